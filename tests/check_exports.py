"""Compare the symbols that the shared library exports with the names that the header declares."""

import re
import subprocess
import sys

nm, library, header = sys.argv[1:]
text = re.sub(r"/\*.*?\*/", "", open(header, encoding="utf-8").read(), flags=re.S)
declared = {re.search(r"(\w+)\s*(?:\(|\[|$)", declaration).group(1)
            for declaration in re.findall(r"^CORVANTIS_API\s+([^;]*);", text, flags=re.M)}
listing = subprocess.run([nm, "-D", "--defined-only", library], check=True, capture_output=True,
                         text=True).stdout
exported = {line.split()[-1].split("@")[0] for line in listing.splitlines()}
print(f"{len(declared)} names declared, {len(exported)} exported")
print("declared, not exported:", *sorted(declared - exported))
print("exported, not declared:", *sorted(exported - declared))
sys.exit(0 if declared and declared == exported else 1)
