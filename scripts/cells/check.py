"""Holds the settings in docs/cells.md to the table that the simulator keeps of them.

check.py PROGRAM DOCUMENT [update]: ends with 1 where they differ, or writes the document anew.
"""
import subprocess
import sys

BEGIN, END = "<!-- settings -->\n", "<!-- end of settings -->\n"


def main(program, document, update):
    table = subprocess.run([program, "settings"], check=True, capture_output=True).stdout.decode()
    with open(document, encoding="utf-8") as file:
        text = file.read()
    head, rest = text.split(BEGIN)
    shown, tail = rest.split(END)
    if update:
        with open(document, "w", encoding="utf-8") as file:
            file.write(head + BEGIN + table + END + tail)
    elif shown != table:
        sys.exit(f"{document} shows other settings; write them anew with the target cell-settings")


if __name__ == "__main__":
    main(sys.argv[1], sys.argv[2], sys.argv[3:] == ["update"])
