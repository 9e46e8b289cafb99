"""`python3 -m corvantis COMMAND ...`."""
import sys

from .commands import families, nwb, plot
from .index_command import index
from .measure_command import measure
from .viewing import view

COMMANDS = {"plot": plot, "families": families, "nwb": nwb, "index": index, "measure": measure,
            "view": view}


def main() -> int:
    """Run the command that the first argument names."""
    if len(sys.argv) < 2 or sys.argv[1] not in COMMANDS:
        print(f"usage: python3 -m corvantis {{{','.join(COMMANDS)}}} FILE ...", file=sys.stderr)
        return 0 if sys.argv[1:2] in (["-h"], ["--help"]) else 2
    return COMMANDS[sys.argv[1]](sys.argv[2:])


if __name__ == "__main__":
    sys.exit(main())
