"""How the parts of a document are laid out on a man page. Documents are pandoc's trees: each node has its kind
as "t" and what it holds as "c". What pandoc would lay out in another way goes through it as troff."""
import re

TEXT_WIDTH = 70


def node(kind, content):
    return {"t": kind, "c": content}


def words(text):
    """Inline nodes of a text without markup."""
    inlines = []
    for word in text.split():
        inlines += [node("Str", word), {"t": "Space"}]
    return inlines[:-1]


def plain_text(tree):
    if isinstance(tree, list):
        return "".join(plain_text(item) for item in tree)
    if not isinstance(tree, dict):
        return ""
    if tree["t"] in ("Space", "SoftBreak", "LineBreak"):
        return " "
    if tree["t"] == "Str":
        return tree["c"]
    if tree["t"] == "Code":
        return tree["c"][1]
    if tree["t"] == "Link":
        return plain_text(tree["c"][1])
    return plain_text(tree.get("c"))


def troff_text(text):
    text = text.replace("\\", "\\e")
    for character, escape in {"-": "\\-", "'": "\\(aq", "`": "\\(ga", "^": "\\(ha", "~": "\\(ti"}.items():
        text = text.replace(character, escape)
    return "".join(c if ord(c) < 128 else f"\\[u{ord(c):04X}]" for c in text)


def in_font(font, text):
    escaped = troff_text(text)
    if text != " ".join(text.split()):
        escaped = escaped.replace(" ", "\\ ")
    return node("RawInline", ["man", f"\\f[{font}]{escaped}\\f[R]"])


def bold(text):
    return in_font("B", text)


def italic(text):
    return in_font("I", text)


def is_a_name(word):
    """Whether a word with a hyphen is not to be broken there: HE-MCS0, --retries."""
    return "-" in word and (word.startswith("-") or re.search("[A-Z0-9]", word))


def shown_lines(text):
    """The lines of a block of code; one that is too long for the terminal is broken at a blank or a comma."""
    for line in text.expandtabs(4).split("\n"):
        indent = re.match(" *", line)[0]
        line = line.lstrip(" ")
        continued = False
        while len(indent + line) > TEXT_WIDTH:
            room = TEXT_WIDTH - len(indent)
            cut = max(line.rfind(" ", 0, room), line.rfind(",", 0, room - 1) + 1)
            if cut <= 0:
                break
            yield indent + line[:cut].rstrip(" ")
            line = line[cut:].lstrip(" ")
            if not continued:
                indent, continued = indent + "    ", True
        yield indent + line


def example(code):
    classes, text = code[0][1], code[1]
    lines = [troff_text(line) for line in shown_lines(text)]
    guarded = ["\\&" + line if line.startswith(".") else line for line in lines]
    title = []
    if classes and classes[0].startswith("file:"):
        title = [".PP", f"\\f[B]{troff_text(classes[0].removeprefix('file:'))}\\f[R]:"]
    broken = [".PP", "\\f[I](Long lines are broken here.)\\f[R]"] if len(lines) > len(text.split("\n")) else []
    return indented(guarded, title, broken)


def indented(lines, before=(), after=()):
    """Lines that stay as they are."""
    return node("RawBlock", ["man", "\n".join([*before, ".PP", ".RS 4", ".EX", *lines, ".EE", ".RE", *after])])


# Tables: what fits the terminal stays one, the others become lists.

def rows_of(table):
    bodies = [row for body in table["c"][4] for row in body[3]]
    return [[cell[4] for cell in row[1]] for row in [*table["c"][3][1], *bodies]]


def turned(rows):
    """One row that is too wide becomes a column."""
    return [list(column) for column in zip(*rows)] if len(rows) == 2 and not fits(rows) else rows


def fits(rows):
    """Whether no cell has to be broken: each gets its share of the width and of one column more."""
    widest = max(len(plain_text(cell)) for row in rows for cell in row)
    return widest <= TEXT_WIDTH // (len(rows[0]) + 1)


def columns(rows):
    """The rows one below the other, the titles in italics. Not by tbl: it warns where a page ends in a table."""
    texts = [[plain_text(cell) for cell in row] for row in rows]
    widths = [max(map(len, column)) for column in zip(*texts)]
    lines = [troff_text("   ".join(text.ljust(width) for text, width in zip(row, widths)).rstrip(" "))
             for row in texts]
    return indented([f"\\f[I]{lines[0]}\\f[R]", *lines[1:]])


def inlines_of(cell):
    return cell[0]["c"] if cell else []


def title_of(header):
    """What is in front of a list that was a table: its columns' titles, as far as the list has them not."""
    title = plain_text(header[0])
    if len(header) == 2:
        second = plain_text(header[1])
        title = f"{title}: {second[:1].lower()}{second[1:]}"
    return node("Para", [node("Emph", words(title)), *([node("Str", ":")] if len(header) > 2 else [])])


def lists_of(header, rows):
    """Lists with the first cells as their terms. Rows without a first cell belong to the row above."""
    if all(first for first, *_ in rows):
        items = [[inlines_of(first), [described(header[1:], others)]] for first, *others in rows]
        return [node("DefinitionList", items)]
    groups = []
    for first, *others in rows:
        if first:
            groups.append([first, []])
        groups[-1][1].append(others)
    result = []
    for first, group in groups:
        result += [node("Para", [*inlines_of(first), node("Str", ":")]), node("RawBlock", ["man", ".RS"]),
                   *lists_of(header[1:], group), node("RawBlock", ["man", ".RE"])]
    return result


def described(header, cells):
    filled = [(title, cell) for title, cell in zip(header, cells) if cell]
    if len(header) == 1:
        return [node("Para", inlines_of(cell)) for _, cell in filled]
    inlines = []
    for title, cell in filled:
        if inlines:
            inlines.append(node("RawInline", ["man", "\n.br\n"]))
        inlines += [node("Emph", inlines_of(title)), node("Str", ":"), {"t": "Space"}, *inlines_of(cell)]
    return [node("Para", inlines)]


# The lists of a program's help.

def described_entry(entry, placeholders):
    term = []
    for name in entry.names:
        term += [*([node("Str", ","), {"t": "Space"}] if term else []), bold(name)]
    if entry.argument:
        joint = [] if entry.argument.startswith(("=", "[=")) else [{"t": "Space"}]
        term += [*joint, italic(entry.argument)]
    text = entry.description + (". Required" if entry.required else "")
    inlines = []
    for word in words(text):
        core = re.fullmatch(r"(\W*?)(\w+)(\W*)", word["c"]) if word["t"] == "Str" else None
        if core and core[2] in placeholders:
            inlines += [node("Str", core[1]), italic(core[2]), node("Str", core[3])]
        else:
            inlines.append(word)
    if entry.default:
        inlines += [*words(". Default:"), {"t": "Space"}, bold(entry.default)]
    return [term, [[node("Para", inlines)]]]


def help_list(entries):
    placeholders = {name for entry in entries for name in re.findall(r"\b[A-Z]+\b", entry.argument)}
    return node("DefinitionList", [described_entry(entry, placeholders) for entry in entries])
