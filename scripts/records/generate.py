"""Makes of the library's description of its records what others say of them.

generate.py DESCRIBE [--check]: DESCRIBE is the program that prints the description. Writes
examples/StimulusNames.h, and holds docs/file-format.md and the comments of Corvantis.h against it.
With --check nothing is written: what is not current is named.
"""
from __future__ import annotations

import json
import re
import subprocess
import sys
from pathlib import Path
from typing import Any

ROOT = Path(__file__).resolve().parents[2]
NOTE = "Made by scripts/records from the library; do not edit."
Described = dict[str, Any]


def names_header(described: Described) -> str:
    rows = "\n".join(f'        case {each["code"]}:\n            return "{each["name"]}";'
                     for each in described["types"])
    return f"""// Names of the stimulus types. {NOTE}
#pragma once

#include <cstdint>

inline const char* StimulusName(int32_t type) {{
    switch (type) {{
{rows}
        default:
            return "unknown";
    }}
}}
"""


def tables_of(document: str) -> list[dict[int, str]]:
    """The document's tables whose rows begin with an offset, as offset and row."""
    found: list[dict[int, str]] = []
    for block in re.split(r"^(?!\|).*$", document, flags=re.MULTILINE):
        rows = re.findall(r"^\| (\d+) \|(.*)$", block, re.MULTILINE)
        found.append({int(place): row for place, row in rows})
    return found


def has_table(tables: list[dict[int, str]], fields: list[Described]) -> bool:
    """Whether a table has the fields, each at its offset, and no other."""
    places = {field["place"] for field in fields}
    return any(all(f"`{field['name']}`" in table.get(field["place"], "") for field in fields) and
               all(place in places or "`zero[" in row or "| |" in row
                   for place, row in table.items()) for table in tables)


def check_document(described: Described) -> list[str]:
    """What docs/file-format.md lacks or says otherwise."""
    document = (ROOT / "docs/file-format.md").read_text(encoding="utf-8")
    records = {name: described[name] for name in ("FileHeader", "EpochHeader")}
    records |= {each["name"]: each["fields"] for each in described["types"] if each["fields"]}
    tables = tables_of(document)
    problems = [f"docs/file-format.md: no table of the fields of {name}"
                for name, fields in records.items() if not has_table(tables, fields)]
    for each in described["types"]:
        if not re.search(rf"^\| {each['code']} \| {each['name']}[^|]*\| {each['bytes']}\b",
                         document, re.MULTILINE):
            problems.append(f"docs/file-format.md: no line for type {each['code']}, "
                            f"{each['name']}, {each['bytes']} bytes")
    return problems


def declared_fields(header: str, record: str) -> dict[str, str]:
    """Names of a structure's fields in the public header, with their comments."""
    body = re.search(rf"typedef struct {record} {{(.*?)}} {record};", header, re.DOTALL)
    found = re.findall(r"(\w+)(?:\[\w+\])*;\s*/\*\*<\s*(.*?)\s*\*/", body[1] if body else "",
                       re.DOTALL)
    return {name: re.sub(r"\s+", " ", comment).replace("#ITCStimulusType", "stimulus type")
            for name, comment in found}


def check_header(described: Described) -> list[str]:
    """Fields that Corvantis.h explains otherwise: `meaning [unit]`, the unit also with a range."""
    header = (ROOT / "itc-code/Corvantis.h").read_text(encoding="utf-8")
    records = {int(code): record for code, record in
               re.findall(r"ITC_STIMULUS_\w+ = (\d+),?\s*/\*\*<\s*#(\w+)", header)}
    every = [("ITCFileHeader", described["FileHeader"]),
             ("ITCEpochHeader", described["EpochHeader"]),
             *((records.get(each["code"], "a record"), each["fields"])
               for each in described["types"])]
    problems = []
    for record, fields in every:
        declared = declared_fields(header, record)
        for field in fields:
            comment = declared.get(field["name"], "nothing")
            unit = re.escape(field["unit"])
            expected = re.escape(field["meaning"]) + (rf" \[{unit}(, [^]]+)?\]" if unit else
                                                      r"( \[[^]]*\])?")
            if not re.fullmatch(expected, comment):
                problems.append(f"Corvantis.h, {record}: {field['name']} is \"{comment}\", not "
                                f"\"{field['meaning']} [{field['unit']}]\"")
    codes = {int(code) for code in re.findall(r"ITC_STIMULUS_\w+ = (\d+)", header)}
    missing = codes - {each["code"] for each in described["types"]}
    return problems + [f"Corvantis.h: type {code} has no row" for code in sorted(missing)]


def main() -> int:
    described = json.loads(subprocess.run([sys.argv[1]], check=True, capture_output=True).stdout)
    problems = check_document(described) + check_header(described)
    made = {"examples/StimulusNames.h": names_header(described)}
    for name, text in made.items():
        path = ROOT / name
        if path.exists() and path.read_text(encoding="utf-8") == text:
            continue
        if "--check" in sys.argv:
            problems.append(f"{name} is not current: build the target records")
        else:
            path.write_text(text, encoding="utf-8")
    print("\n".join(problems) or "records: everything is current")
    return 1 if problems else 0


if __name__ == "__main__":
    sys.exit(main())
