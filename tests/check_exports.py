"""Compare the symbols that shared libraries export with the names that their headers declare."""

import re
import subprocess
import sys


def exported_by(nm: str, library: str) -> set[str]:
    """Names in a library's table of dynamic symbols, or in a linker's list of a DLL's exports."""
    if library.endswith(".def"):
        with open(library, encoding="utf-8") as exports:
            return {line.split()[0] for line in exports.readlines()[1:]}
    listing = subprocess.run([nm, "-D", "--defined-only", library], check=True,
                             capture_output=True, text=True).stdout
    return {line.split()[-1].split("@")[0] for line in listing.splitlines()}


def differs(nm: str, library: str, header: str) -> bool:
    text = re.sub(r"/\*.*?\*/", "", open(header, encoding="utf-8").read(), flags=re.S)
    declared = {re.search(r"(\w+)\s*(?:\(|\[|$)", declaration).group(1)
                for declaration in re.findall(r"^CORVANTIS_API\s+([^;]*);", text, flags=re.M)}
    exported = exported_by(nm, library)
    print(f"{header}: {len(declared)} names declared, {len(exported)} exported")
    print("declared, not exported:", *sorted(declared - exported))
    print("exported, not declared:", *sorted(exported - declared))
    return not declared or declared != exported


nm, *pairs = sys.argv[1:]
sys.exit(any([differs(nm, *pair) for pair in zip(pairs[::2], pairs[1::2], strict=True)]))
