"""Reads the calls of the project's own functions in its CMakeLists.txt files, for scripts that need to
know the layers or the test programs without a configured build."""
import collections
import re

# folder: of the CMakeLists.txt, below the root that was read, with a slash at its end; values: the
# words after each keyword, those before the first one excepted.
Call = collections.namedtuple("Call", "folder name values")

KEYWORDS = ("SOURCES", "USES", "LIBRARY_HEADERS", "LONG", "PROPERTIES")


def call_of(folder, words):
    values, keyword = {keyword: [] for keyword in KEYWORDS}, None
    for word in words[1:]:
        if word in KEYWORDS:
            keyword = word
        elif keyword:
            values[keyword].append(word)
    return Call(folder, words[0], values)


def calls(root, *functions):
    """All calls of the functions below the folder, sorted by folder, then as they are written."""
    pattern = re.compile(rf"^\s*(?:{'|'.join(functions)})\s*\(([^()]*)\)", re.MULTILINE)
    for file in sorted(root.rglob("CMakeLists.txt")):
        folder = file.parent.relative_to(root).as_posix() + "/"
        text = re.sub(r"#[^\n]*", "", file.read_text(encoding="utf-8"))
        for match in pattern.finditer(text):
            yield call_of(folder, match[1].split())
