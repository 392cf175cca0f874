"""Headings, links and code spans of a page of the repository, and its place on the site."""
import os.path
import re

_FENCED = re.compile(r"^(```+)[^\n]*\n.*?^\1[ \t]*$", re.MULTILINE | re.DOTALL)
_HEADING = re.compile(r"^(#{1,6}) +(.+?)[ \t]*$", re.MULTILINE)
# A code span, or a link or image. The text of a link may contain code spans.
INLINE = re.compile(r"(?P<ticks>`+)(?!`)(?P<code>.+?)(?<!`)(?P=ticks)(?!`)"
                    r"|(?P<image>!?)\[(?P<text>(?:`[^`]*`|[^\]`])*)\]\((?P<target>[^)\s]*)\)",
                    re.DOTALL)


def split_fences(text):
    """The parts of a page as pairs: whether the part is a fenced block, and its text."""
    position = 0
    for block in _FENCED.finditer(text):
        yield False, text[position:block.start()]
        yield True, block[0]
        position = block.end()
    yield False, text[position:]


class Anchors:
    """Gives the headings of one page, in their order, the anchors that the repository's page has."""

    def __init__(self):
        self._counts = {}

    def add(self, title):
        """The anchor of the next heading. Each repetition has a number at its end."""
        plain = re.sub(r"\[([^\]]*)\]\([^)]*\)", r"\1", title).lower()
        anchor = re.sub(r"[^\w\- ]", "", plain).replace(" ", "-")
        count = self._counts.get(anchor, 0)
        self._counts[anchor] = count + 1
        return f"{anchor}-{count}" if count else anchor


def replace_headings(part, replace):
    """A part that is not fenced, with replace(hashes, title) in place of each heading."""
    return _HEADING.sub(lambda match: replace(match[1], match[2]), part)


def headings(text):
    """The headings of a page, each with its anchor."""
    known = Anchors()
    for is_fenced, part in split_fences(text):
        if not is_fenced:
            for heading in _HEADING.finditer(part):
                yield heading[2], known.add(heading[2])


def site_name(page):
    """The name of the page of the site that shows a page of the repository."""
    return os.path.splitext(os.path.basename(page))[0].lower()


def site_anchor(page, anchor):
    """An anchor on the site. Doxygen has one name space for the anchors of all pages."""
    return f"{site_name(page)}-{anchor}"


def site_page(page, anchor):
    """Where the site has an anchor of a page; an empty one is the page."""
    return f"{site_name(page)}.html" + (f"#{site_anchor(page, anchor)}" if anchor else "")


def links(text):
    """The line and the target of each link and image of a page."""
    line = 1
    for is_fenced, part in split_fences(text):
        if not is_fenced:
            for match in INLINE.finditer(part):
                if match["target"] is not None:
                    yield line + part.count("\n", 0, match.start()), match["target"]
        line += part.count("\n")
