"""Shared by the Python scripts beside this file."""

import argparse
import sys
from pathlib import Path

REPOSITORY = Path(__file__).resolve().parent.parent


class BadInput(Exception):
    """What is wrong with what was given, in one line."""


class Failure(Exception):
    """What could not be done, in one line."""


class Parser(argparse.ArgumentParser):
    """Says what is wrong in one line, without the usage."""

    def error(self, message):
        raise BadInput(f"{message}; see --help")


def write_whole(path, text):
    """The file has its old content or all of the new one, whatever happens."""
    aside = path.with_name(path.name + ".new")
    aside.write_text(text, encoding="utf-8")
    aside.replace(path)


def complain(lines):
    for line in lines:
        print(f"{Path(sys.argv[0]).name}: {line}", file=sys.stderr)


def run(main):
    """Ends the program with the exit code that main() returns; where it cannot do its work, with 1 or 2 after one line."""
    try:
        sys.exit(main())
    except Failure as problem:
        complain([problem])
        sys.exit(1)
    except (BadInput, OSError) as problem:
        complain([problem])
        sys.exit(2)
