"""Reads what the programs print for --help: the man pages are made from it, and the completion is compared
with it."""
import dataclasses
import re
import subprocess

DESCRIPTION_COLUMN = 30


@dataclasses.dataclass
class Entry:
    """One line of a list of the help: an option, a positional, a subcommand or a fault."""
    names: list  # as ["-o", "--output"]
    argument: str  # as "HOST[:PORT]"; empty for an option that takes none
    default: str  # as "127.0.0.1"; empty where there is none
    required: bool
    repeated: bool
    description: str


def of(program, *subcommand):
    """The help's lists of entries by their titles in lower case, and the paragraphs around them as "text"."""
    text = subprocess.run(
        [program, *subcommand, "--help"], stdin=subprocess.DEVNULL, capture_output=True, encoding="utf-8",
        check=True).stdout
    return read(text)


def read(text):
    sections = {"text": []}
    for block in text.replace("\r\n", "\n").strip("\n").split("\n\n"):
        title, _, rest = block.partition("\n")
        if re.fullmatch(r"[A-Z][a-z]+:", title):
            name = title[:-1].lower()
            sections[name] = list(_entries(rest.split("\n"), _fault if name == "faults" else _option))
        else:
            sections["text"].append(" ".join(block.split("\n")))
    return sections


def _entries(lines, parse):
    entry = None
    for line in lines:
        if line.startswith("   "):
            entry.description = f"{entry.description} {line.strip()}".strip()
            continue
        if entry:
            yield entry
        entry = parse(line)
    yield entry


def _option(line):
    described = line[DESCRIPTION_COLUMN - 1:DESCRIPTION_COLUMN] == " "
    head = line[:DESCRIPTION_COLUMN].strip() if described else line.strip()
    description = line[DESCRIPTION_COLUMN:].strip() if described else ""
    words = head.split(" ")
    names, rest = words[0].split(","), words[1:]
    required = "REQUIRED" in rest
    repeated = "..." in rest
    argument, _, default = "".join(word for word in rest if word not in ("REQUIRED", "...")).partition("=")
    return Entry(names, argument, default, required, repeated, description)


def _fault(line):
    name, _, description = line.strip().partition(" ")
    name, equals, argument = re.fullmatch(r"([\w-]+)(\[?=)?(.*)", name).groups()
    if equals == "[=":
        argument = f"[={argument}"
    elif equals:
        argument = f"={argument}"
    return Entry([name], argument, "", False, False, description.strip())
