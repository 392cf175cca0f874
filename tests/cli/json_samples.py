"""The calls whose JSON is validated, and the files that they need beside the sample project."""

import dataclasses
import os


@dataclasses.dataclass
class Sample:
    # The name of the schema: the command with "-" for blanks.
    schema: str
    arguments: list
    status: int = 0
    # How many documents are printed, each on a line.
    documents: int = 1
    # What the output has: the reason for which the sample is here.
    contains: tuple = ()
    environment: dict = dataclasses.field(default_factory=dict)
    standard_input: bytes = b""


def sample(command, *arguments, **expectations):
    call = [*command.split(), "--json", *arguments]
    return Sample(command.replace(" ", "-"), call, **expectations)


# A bidirectional mark, a backslash, a quote, a line end, a tag character, a line separator.
HIDDEN = 'a\u202e\\"\n\U000e0041\u2028'
HIDDEN_IN_XML = "a\u202e\\&quot;&#10;\U000e0041\u2028"
HIDDEN_IN_JSON = r"a\u202e\\\"\n\udb40\udc41\u2028"
# A "\" in the name of a file is a separator.
FILE_NAME = HIDDEN.replace("\\", "") + ".xml"
# No command opens such a file, but its name is printed.
NOT_TEXT = "not\udcfftext.xml"

UNIT = '<vec1 x="1" y="0" z="0"/><vec2 x="0" y="1" z="0"/><vec3 x="0" y="0" z="1"/>'


def component(name, data="", at="0 0 0", vectors=UNIT, comment="", enabled="1"):
    x, y, z = at.split()
    return (
        f'<Component name="{name}" comment="{comment}" enabled="{enabled}">'
        f'<Translation x="{x}" y="{y}" z="{z}"/><Orientation>{vectors}</Orientation>'
        f'<Data number="1">{data}</Data></Component>'
    )


def assembly(root, dimension="1 2 3"):
    x, y, z = dimension.split()
    return (
        '<?xml version="1.0" encoding="UTF-8"?>\n<ComponentInfo version="1"><Attributs>'
        f'<Dimension x="{x}" y="{y}" z="{z}"/></Attributs>{root}</ComponentInfo>\n'
    )


def geometry(name):
    return f'<File name="{name}"/>'


def assemblies():
    stretched = UNIT.replace('x="1"', 'x="2"')
    left = UNIT.replace('<vec3 x="0" y="0" z="1"/>', '<vec3 x="0" y="0" z="-1"/>')
    first = [
        component("a", geometry("a.stl")),
        component("b", component("c")),
        component("d", geometry("d.stl"), at="inf 0 0"),
        component("k"),
        component("e", vectors=stretched),
        component("f", vectors=left),
        component("g", component("h")),
    ]
    second = [
        component("b", component("c")),
        component("a"),
        component("z", geometry("d.stl"), at="inf 0 0"),
        component("k", geometry("k.stl"), at="0 inf 0"),
        component("e"),
        component("f"),
        component("i", component("j"), comment="new"),
    ]
    odd = [
        component(HIDDEN_IN_XML, geometry(HIDDEN_IN_XML), comment=HIDDEN_IN_XML, at="nan inf -inf"),
        component("number", at="14O 0 0"),
        component("flag", enabled="yes"),
        component("vector", vectors="<vec1/>"),
        component("twice", geometry("a.stl") + geometry("b.stl")),
        component("both", geometry("a.stl") + component("hidden")),
        "<Extra/>",
    ]
    # A component without a geometry file or components cannot be written.
    edited = [
        component("a", geometry("a.stl")),
        component("b", component("c", geometry("c.stl"))),
        component("d", geometry("d.stl")),
    ]
    return {
        "first.xml": assembly(component("root", "".join(first)), "-inf 2 3"),
        "second.xml": assembly(component("root", "".join(second)), "1 2 inf"),
        "edited.xml": assembly(component("root", "".join(edited))),
        "odd.xml": assembly(component("root", "".join(odd))),
        "one.xml": assembly(component("")),
        FILE_NAME: assembly(component("root")),
        NOT_TEXT: assembly(component("root")),
        "broken.xml": '<?xml version="1.0"?>\n<ComponentInfo><Component>\n',
        "wrong.xml": "<Wrong/>\n",
    }


OTHER_FILES = {
    "nan.dat": "1\n1 0 0 inf\n0 nan 0 -inf\n0 0 1 nan\n0 0 0 1\n",
    "singular.dat": "1\n1 0 0 0\n0 0 0 0\n0 0 1 0\n0 0 0 1\n",
    "stretched.dat": "1\n2 0 0 0\n0 1 0 0\n0 0 1 0\n0 0 0 2\n#1 2 3\n",
    "odd.dat": "1\n1 0 0 0\n0 1 0 0\n0 0 1 0\n1 0 0 5\n0 1 0 0\n0 0 1 0\n0 0 0 1\n",
    "short.dat": "1\n1 0 0 0\n0 1 x 0\n",
    "odd.mctx": "[header]\nname=\u202e\\\"\n[machine]\nname=m.mac\nposition=\nproximity=ten\n",
    "numbers.mctx": "[header]\nname=\n[postpro]\norigin_program=nan inf -inf\nreference_axis=\n",
    "empty": "",
    "odd.msg": "before\n[one]\na = \u202e\\\"\nno entry\n[two]\n/els\n[three]\n",
    "odd.cfg": "[var]\n/if UNKNOWN == 3\nA = 1\n/endif\n",
}

# The value of LONG has 14 definitions. The second definition of UNITS is ignored.
CELL = "LONG = 0\n" + "LONG = + x\n" * 13 + "LOOP = $LOOP\nPARTLY = $SITE $NOBODY\n"
HOME = "UNITS = inch\nunits = foot\n"
PATHS = "[path]\nODD = $TRVHOME/site;$NOBODY/nowhere\n"


def insert(path, before, text):
    content = path.read_text(encoding="utf-8")
    path.write_text(content.replace(before, text + before, 1), encoding="utf-8")


def encoded(text):
    """The bytes of a name or an argument, which are UTF-8 in every locale."""
    return text.encode("utf-8", "surrogateescape")


def write_files(work):
    project = work / "project"
    for name, text in {**assemblies(), **OTHER_FILES}.items():
        with open(os.path.join(os.fsencode(project), encoded(name)), "wb") as out:
            out.write(text.encode("utf-8"))
    context = (project / "bracket-left.mctx").read_bytes()
    (project / "text.mctx").write_bytes(context.replace(b"vise", b"vise \xff"))
    # A context without its reference axis file.
    (project / "[MACHINE_POSITION_3].mctx").write_bytes(context)
    home = work / "installation/config/environ.cfg"
    insert(home, "[path]", HOME)
    cell = work / "installation/cell/environ.cfg"
    cell.write_text(cell.read_text(encoding="utf-8") + "\n[var]\n" + CELL + PATHS, encoding="utf-8")


def file_samples():
    several = ["bracket.xml", "missing.xml", "broken.xml", "odd.xml"]
    numbers = ('["nan","inf","-inf"]',)
    return [
        sample("show", "bracket.xml"),
        sample("show", "odd.xml", contains=numbers + (HIDDEN_IN_JSON,)),
        sample("show", "one.xml", contains=('"geometryFile":null',)),
        sample("show", FILE_NAME, contains=(r'"a\u202e\"\n\udb40\udc41\u2028.xml"',)),
        sample("show", "-", standard_input=assembly(component("r")).encode()),
        sample("show", "table-a30.dat"),
        sample("show", "bracket-left.mctx"),
        sample("show", "odd.mctx", contains=('"missingSections":["',)),
        sample("show", "missing.xml", status=2, documents=0),
        sample("show", "transfo.dat", "odd.mctx", *several, status=2),
        sample("show", "missing.xml", "geometry", status=2),
        sample("assembly tree", "bracket.xml"),
        sample("assembly tree", "--match", "jaw", "bracket.xml"),
        sample("assembly tree", "--match", "-?-", "bracket.xml", status=1),
        sample("assembly tree", "--summary", "bracket.xml"),
        sample("assembly tree", "--depth", "1", *several, status=2),
        sample("assembly list", "bracket.xml"),
        sample("assembly list", "odd.xml", contains=('"nan"',)),
        sample("assembly list", "one.xml"),
        sample("assembly list", *several, status=2),
        sample("axis show", "transfo.dat"),
        sample("axis show", "nan.dat", contains=('"inf","-inf","nan"',)),
        sample("axis show", "singular.dat", contains=('"inverse":null',)),
        sample("axis show", "table-a30.dat", "short.dat", status=2),
    ]


def comparison_samples():
    fields = (
        '"added"', '"removed"', '"moved"', '"renamed"', '"changed"', '"dimension"', '"name"',
        '"geometryFile"', '"orientation"', '"angle":null', '"notes":[{',
    )
    return [
        sample("assembly diff", "bracket.xml", "bracket.xml"),
        sample(
            "assembly diff", "bracket.xml", "bracket-rev-b.xml",
            status=1,
            contains=('"comment"', '"enabled"', '"translation"', '"angle":14.99'),
        ),
        sample("assembly diff", "first.xml", "second.xml", status=1, contains=fields),
        sample("assembly diff", "odd.xml", "first.xml", status=1, contains=(HIDDEN_IN_JSON,)),
        sample("assembly diff", "odd.xml", "missing.xml", status=2, documents=0),
    ]


def view_samples():
    files = ('"format":"stl"', '"format":null', '"reason":"file not found"')
    kinds = (
        '"added"', '"removed"', '"moved"', '"changed"', '"note"', '"dimension"',
    )
    return [
        sample("view", "bracket.xml", contains=('"format":"stl"', '"diff":null')),
        sample("view", "odd.xml", contains=(HIDDEN_IN_JSON, '"reason":"file not found"')),
        sample("view", "one.xml", contains=('"files":[]', '"matrix":""')),
        sample("view", "table-a30.dat", "bracket-left.mctx", contains=('"context"', '"axis"')),
        sample("view", "-", standard_input=assembly(component("r", geometry("empty"))).encode()),
        sample("view", "--diff", "bracket.xml", "bracket-rev-b.xml", "left-vise.ref"),
        sample("view", "--diff", "first.xml", "second.xml", contains=kinds),
        sample("view", "--diff", "bracket.xml", "first.xml", contains=files),
        sample("view", "--diff", "one.xml", "one.xml", contains=('"diff":[]',)),
        sample("view", "bracket.xml", "missing.xml", status=2, documents=0),
    ]


def edit_samples():
    disabled = ["--disable", "root/a", "--set", "root/a.name=A", "--set", "root/a.comment=c"]
    return [
        sample(
            "assembly edit", "--dry-run", *disabled, "--set", "root/b.translation=1,2,3",
            "edited.xml", "missing.xml", "one.xml",
            status=2,
            contains=('"renamed"', '"comment"', '"enabled"', '"translation":[1,2,3]'),
        ),
        # A component with another name and another file is not the same one.
        sample(
            "assembly edit", "--rename-file", "d.stl=e.stl", "--set", "root/d.name=D", "edited.xml",
            contains=('"added"', '"removed"'),
        ),
        sample(
            "assembly edit", "--rename-file", "d.stl=x", "edited.xml",
            contains=('"changed":false',),
        ),
        sample(
            "assembly edit", "--rename-file", "a.stl=" + HIDDEN, "edited.xml", "bracket.xml",
            contains=(HIDDEN_IN_JSON,),
        ),
        sample("assembly edit", "--enable", "root/x", "edited.xml", status=2),
        sample("assembly edit", "--enable", "root", FILE_NAME, contains=('"changed":false',)),
        sample("assembly edit", "edited.xml", status=2, documents=0),
    ]


def check_samples():
    codes = (
        "notOpened", "wrongContent", "wrongStructure", "notANumber", "notAFlag", "leftOut",
        "unknownName", "repeated", "hiddenByFile", "notText", "missingRow", "notAffine",
        "notOrthonormal", "misplacedTags", "missingSection", "missingFile",
    )
    files = [
        "odd.xml", "broken.xml", "wrong.xml", "short.dat", "odd.dat", "stretched.dat", "odd.mctx",
        "text.mctx", "missing.xml",
    ]
    return [
        sample("check", "bracket.xml", "table-a30.dat", "bracket-left.mctx"),
        sample(
            "check", "--references", *files,
            status=1,
            contains=tuple(f'"code":"{code}"' for code in codes),
        ),
        sample("check", NOT_TEXT, status=1),
        sample("check", "--quiet", "bracket.xml"),
        sample("check", "--recursive", ".", status=1),
    ]


def context_samples():
    return [
        sample("context list"),
        sample("context list", "."),
        sample("context list", "--all", "."),
        sample("context default", "."),
        sample("context default", "bracket-left.mctx", status=1),
        sample("context create", "--position", "2", "."),
        sample("context create", "--position", "2", ".", status=2, documents=0),
        sample("context create", "--position", "3", ".", contains=('"replaced":["',)),
        sample("context create", "--machine", "pallet-mill.mac", "."),
        sample("context get", "bracket-left.mctx"),
        sample(
            "context get", "odd.mctx", "missing.mctx", "bracket-left.mctx",
            status=2,
        ),
        sample("context get", "numbers.mctx", contains=('["nan","inf","-inf"]',)),
        sample("context get", "odd.mctx", "header.name", "machine.proximity"),
        sample("context set", "bracket-left.mctx", "machine.proximity=2.5"),
        sample(
            "context set", "bracket-left.mctx", "missing.mctx", "bracket-right.mctx",
            "header.comment=\u202e\\\"", "header.name=", "machine.name=m", "machine.position=p",
            "machine.proximity=1", "postpro.origin_program=1 2.5 -3",
            "postpro.reference_axis=transfo.dat", "part.surface_group=s", "clamping_system.name=c",
            "clamping_system.proximity=0",
            status=2,
            contains=(r'"header.comment":"\u202e\\\""', "[1,2.5,-3]"),
        ),
        sample("context set", "missing.mctx", "machine.name=m", status=2, documents=0),
        sample("context set", "bracket-left.mctx", status=2, documents=0),
    ]


def environment_samples():
    messages = "../installation/texts/messages.msg"
    return [
        sample("env list", contains=('"origin":"program"',)),
        sample("env list", "--paths"),
        sample(
            "env list",
            environment={"SITE": HIDDEN},
            contains=(HIDDEN_IN_JSON, '"origin":"environment"'),
        ),
        sample("env explain", "SPINDLE_LIMIT", contains=('"lastDefinition"',)),
        sample("env explain", "LONG", contains=('"definitionsLeftOut":4',)),
        sample("env explain", "LONG", "--all", contains=('"definitionsLeftOut":0',)),
        sample("env explain", "UNITS", contains=('"hidden":[{',)),
        sample("env explain", "LOOP", contains=('"expanded":null',)),
        sample("env explain", "PARTLY", contains=('"value":null',)),
        sample("env explain", "?CFG", contains=('"directories":[{',)),
        sample("env explain", "?ODD", contains=('"exists":false',)),
        sample("env explain", "TMP", contains=('"origin":"workZone"',)),
        sample("env explain", "SITE", environment={"SITE": "x"}, contains=('"environmentFirst"',)),
        sample(
            "env explain", "?ODD",
            environment={"ODDPATH": "/odd"},
            contains=('"path":"/odd"', '"origin":"environment"'),
        ),
        sample("env explain", "WINDOWS", contains=('"origin":"program"',)),
        sample("env explain", "PATH", contains=('"notInFiles"',)),
        sample("env explain", "SPINDEL_LIMIT", status=1, contains=('"SPINDLE_LIMIT"',)),
        sample("env explain", HIDDEN, status=1, contains=('"suggestion":null',)),
        sample(
            "env expand", "$LABEL", "$NOBODY $NOBODY ?NONE", HIDDEN,
            status=1,
            contains=('["$NOBODY","?NONE"]', HIDDEN_IN_JSON),
        ),
        sample("env expand", "${LABEL", "$LOOP", "", status=2, contains=('"expanded":null',)),
        sample("env expand", "--path", "$TRVHOME//site"),
        sample("env find", "?CFG\\shop.cfg", contains=('"found":true',)),
        sample("env find", "$TMP/$WINDOWS", status=1, contains=('"workZone"', '"program"')),
        sample("env find", "?TXT/" + HIDDEN, status=1, contains=('"path":null',)),
        sample("env find", "?NONE/shop.cfg", status=1, contains=('["?NONE"]', '"value":null')),
        sample("env messages", messages),
        sample("env messages", messages, "x", status=1, contains=('"sections":[]',)),
        sample("env check", "../installation/site/environ.cfg"),
        sample(
            "env check", "odd.msg", "odd.cfg", "empty", "missing",
            status=1,
            contains=('"sections":null',),
        ),
    ]


def samples():
    return [
        *file_samples(),
        *comparison_samples(),
        *view_samples(),
        *edit_samples(),
        *check_samples(),
        *context_samples(),
        *environment_samples(),
    ]
