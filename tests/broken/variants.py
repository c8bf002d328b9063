"""The list of broken libraries in variants.toml, read and checked."""

import tomllib
from dataclasses import dataclass, field
from pathlib import Path

HERE = Path(__file__).resolve().parent
PRODUCT = HERE.parent.parent
PAGE = PRODUCT / "docs" / "testing.md"
WAYS = ("fail", "crash", "timeout", "load")
BUILDS = ("linux", "windows")

# The keys of a variant in the file, and what they are called here.
KEYS = {
    "name": "name",
    "category": "category",
    "file": "file",
    "from": "old",
    "to": "new",
    "compile": "compile",
    "moc": "moc",
    "options": "options",
    "link-options": "link_options",
    "scenario": "scenario",
    "by": "by",
    "test": "test",
    "unseen": "unseen",
    "raw-host": "raw_host",
    "without": "without",
    "reason": "reason",
}


class BadInput(Exception):
    """What is wrong with the list, in one line."""


@dataclass
class Variant:
    name: str
    category: str
    file: str = ""
    scenario: str = ""
    by: str = "fail"
    test: str = ""
    unseen: str = ""
    raw_host: str = ""
    old: str = ""
    new: str = ""
    compile: list = field(default_factory=list)
    moc: str = ""
    options: list = field(default_factory=list)
    link_options: list = field(default_factory=list)
    without: list = field(default_factory=list)
    reason: str = ""

    @property
    def sources(self):
        """The sources that are compiled with the fault, in the product's folder."""
        is_source = Path(self.file).suffix == ".cpp"
        sources = self.compile or ([self.file] if is_source else [])
        # The source of a class includes its meta-object code.
        source_of_moc = self.moc.replace(".h", ".cpp")
        return sources + [source_of_moc] * (self.moc != "" and source_of_moc not in sources)

    def changed(self, source):
        """The text of the product's file with the fault in it."""
        if not self.old:
            return source
        if source.count(self.old) != 1:
            raise BadInput(f"{self.name}: the text to change is {source.count(self.old)} times in {self.file}, not once")
        return source.replace(self.old, self.new)

    def problem(self):
        """What is wrong with it, or nothing."""
        if self.by not in WAYS:
            return f"by is one of {', '.join(WAYS)}"
        if bool(self.scenario) == bool(self.test) or bool(self.test) != bool(self.unseen):
            return "it has a scenario, or a test and why no scenario can see it (unseen)"
        if self.category == "slot order" and self.file.startswith("interfaces/") and not self.raw_host:
            return "a fault in an interface's table has a raw-host"
        if not (self.old or self.options or self.link_options):
            return "there is no fault"
        if self.old and not self.file:
            return "from is a text of a file"
        if set(self.without) - set(BUILDS) or bool(self.without) != bool(self.reason):
            return f"without names some of {', '.join(BUILDS)}, and has a reason"
        return ""


def read_list(path=HERE / "variants.toml"):
    """The categories and the variants."""
    try:
        content = tomllib.loads(path.read_text(encoding="utf-8"))
        entries, categories = content["variant"], content["categories"]
    except (OSError, tomllib.TOMLDecodeError, KeyError) as error:
        raise BadInput(f"{path} cannot be read ({error})") from None
    variants = [variant_of(entry) for entry in entries]
    names = [variant.name for variant in variants]
    if len(set(names)) != len(names):
        raise BadInput(f"{path} has a name twice")
    for variant in variants:
        if variant.category not in categories:
            raise BadInput(f"{variant.name}: there is no category '{variant.category}' (there are: {categories})")
    return categories, variants


def read_variants(path=HERE / "variants.toml"):
    return read_list(path)[1]


def variant_of(entry):
    missing = {"name", "category"} - entry.keys()
    if missing:
        raise BadInput(f"a variant has no {', '.join(sorted(missing))}: {entry}")
    unknown = entry.keys() - KEYS.keys()
    if unknown:
        raise BadInput(f"{entry['name']}: there is no key {', '.join(sorted(unknown))}")
    variant = Variant(**{KEYS[key]: value for key, value in entry.items()})
    if variant.problem():
        raise BadInput(f"{variant.name}: {variant.problem()}")
    return variant


def page_with_table(page, variants):
    """The text of the page, with the table of the variants between its marks."""
    before, begin, rest = page.partition("<!-- table -->\n")
    _, end, after = rest.partition("<!-- end -->\n")
    if not begin or not end:
        raise BadInput(f"{PAGE} has no <!-- table --> and <!-- end --> to write between")
    rows = ["| Library | What is wrong | Fails | Verdict |", "|---|---|---|---|"]
    rows += [f"| {each.name} | {each.category} | {each.scenario or each.test} | {each.by} |" for each in variants]
    return "\n".join([before + begin, *rows, "", end + after])
