"""The list of broken libraries in variants.toml, read and checked."""

import tomllib
from dataclasses import dataclass, field
from pathlib import Path

HERE = Path(__file__).resolve().parent
WAYS = ("fail", "crash", "hang")


class BadInput(Exception):
    """What is wrong with the list, in one line."""


@dataclass
class Variant:
    name: str
    file: str
    test: str
    by: str = "fail"
    old: str = ""
    new: str = ""
    options: list = field(default_factory=list)
    has_options: bool = False

    @property
    def program(self):
        return self.test.partition("::")[0]

    @property
    def function(self):
        return self.test.partition("::")[2]

    def changed(self, source):
        """The text of the product's file with the fault in it."""
        if not self.old:
            return source
        if source.count(self.old) != 1:
            raise BadInput(f"{self.name}: the text to change is {source.count(self.old)} times in {self.file}, not once")
        return source.replace(self.old, self.new)


def read_variants(path=HERE / "variants.toml"):
    try:
        entries = tomllib.loads(path.read_text(encoding="utf-8"))["variant"]
    except (OSError, tomllib.TOMLDecodeError, KeyError) as error:
        raise BadInput(f"{path} cannot be read ({error})") from None
    variants = [variant_of(entry) for entry in entries]
    names = [variant.name for variant in variants]
    if len(set(names)) != len(names):
        raise BadInput(f"{path} has a name twice")
    return variants


def variant_of(entry):
    missing = {"name", "file", "test"} - entry.keys()
    if missing:
        raise BadInput(f"a variant has no {', '.join(sorted(missing))}: {entry}")
    variant = Variant(
        name=entry["name"],
        file=entry["file"],
        test=entry["test"],
        by=entry.get("by", "fail"),
        old=entry.get("from", ""),
        new=entry.get("to", ""),
        options=entry.get("options", []),
        has_options="options" in entry,
    )
    if variant.by not in WAYS or not variant.function or not (variant.old or variant.has_options):
        raise BadInput(f"{variant.name}: by is one of {', '.join(WAYS)}, test is program::function, and there is a fault")
    return variant
