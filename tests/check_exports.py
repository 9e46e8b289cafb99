"""Compare the symbols that the shared library exports with the names that the header declares."""

import re
import subprocess
import sys


def declared_names(header):
    text = re.sub(r"/\*.*?\*/", "", open(header, encoding="utf-8").read(), flags=re.S)
    declarations = re.findall(r"^CORVANTIS_API\s+([^;]*);", text, flags=re.M)
    return {re.search(r"(\w+)\s*(?:\(|\[|$)", text).group(1) for text in declarations}


def exported_names(nm, library):
    listing = subprocess.run([nm, "-D", "--defined-only", library], check=True,
                             capture_output=True, text=True).stdout
    return {line.split()[-1].split("@")[0] for line in listing.splitlines()}


def main():
    nm, library, header = sys.argv[1:]
    declared, exported = declared_names(header), exported_names(nm, library)
    for name in sorted(declared - exported):
        print("declared, not exported:", name)
    for name in sorted(exported - declared):
        print("exported, not declared:", name)
    print(len(declared), "names declared,", len(exported), "exported")
    return 0 if declared and declared == exported else 1


if __name__ == "__main__":
    sys.exit(main())
