"""Writes workbook packages (ISO/IEC 29500) with the standard library, sheets as streams."""

import contextlib
import zipfile
from xml.sax.saxutils import escape, quoteattr

MAIN = "http://schemas.openxmlformats.org/spreadsheetml/2006/main"
RELATIONS = "http://schemas.openxmlformats.org/officeDocument/2006/relationships"
PACKAGE_RELATIONS = "http://schemas.openxmlformats.org/package/2006/relationships"
PROPERTIES = "http://schemas.openxmlformats.org/officeDocument/2006/extended-properties"
CORE = "http://schemas.openxmlformats.org/package/2006/metadata/core-properties"
TYPES = "http://schemas.openxmlformats.org/package/2006/content-types"
SPREADSHEET_TYPE = "application/vnd.openxmlformats-officedocument.spreadsheetml."
DECLARATION = '<?xml version="1.0" encoding="UTF-8" standalone="yes"?>\n'

# Index of each style in STYLES, by what the cell shows.
GENERAL, HEADING, YEAR, WHOLE, DECIMAL, PERCENT, DATE = range(7)
STYLES = (
    f'<styleSheet xmlns="{MAIN}"><numFmts count="2">'
    '<numFmt numFmtId="164" formatCode="0.0%"/><numFmt numFmtId="165" formatCode="yyyy\\-mm\\-dd"/>'
    '</numFmts><fonts count="2"><font><sz val="11"/><name val="Calibri"/></font>'
    '<font><b/><sz val="11"/><name val="Calibri"/></font></fonts>'
    '<fills count="2"><fill><patternFill patternType="none"/></fill>'
    '<fill><patternFill patternType="gray125"/></fill></fills>'
    '<borders count="1"><border><left/><right/><top/><bottom/><diagonal/></border></borders>'
    '<cellStyleXfs count="1"><xf numFmtId="0" fontId="0" fillId="0" borderId="0"/></cellStyleXfs>'
    '<cellXfs count="7">'
    + "".join(
        f'<xf numFmtId="{format_id}" fontId="{font}" fillId="0" borderId="0" xfId="0"'
        ' applyNumberFormat="1" applyFont="1"/>'
        for format_id, font in ((0, 0), (0, 1), (1, 1), (3, 0), (4, 0), (164, 0), (165, 0))
    )
    + '</cellXfs><cellStyles count="1"><cellStyle name="Normal" xfId="0" builtinId="0"/>'
    "</cellStyles></styleSheet>"
)


def column_letters(number):
    """1 -> A, 27 -> AA."""
    letters = ""
    while number:
        number, digit = divmod(number - 1, 26)
        letters = chr(65 + digit) + letters
    return letters


class BookWriter:
    """A package on disk. The same calls give the same bytes: parts carry a fixed time."""

    def __init__(self, path, level=6, compression=zipfile.ZIP_DEFLATED):
        self._zip = zipfile.ZipFile(path, "w")
        self._level = level
        self._compression = compression
        self._sheets = []
        self._names = []
        self._links = []
        self._strings = {}
        self._string_uses = 0

    def __enter__(self):
        return self

    def __exit__(self, failure, *_):
        if failure is None:
            self._write_fixed_parts()
        self._zip.close()

    @contextlib.contextmanager
    def _part(self, name):
        info = zipfile.ZipInfo(name, date_time=(2024, 1, 1, 0, 0, 0))
        info.compress_type = self._compression
        info._compresslevel = self._level
        info.create_system = 3
        info.external_attr = 0o644 << 16
        with self._zip.open(info, "w") as stream:
            stream.write(DECLARATION.encode())
            yield lambda text: stream.write(text.encode())

    def _write(self, name, text):
        with self._part(name) as write:
            write(text)

    def string(self, text):
        """The index of a shared string."""
        self._string_uses += 1
        return self._strings.setdefault(text, len(self._strings))

    def name(self, name, refers_to, sheet=None):
        """A defined name; sheet is the name of its sheet for a sheet-level one."""
        self._names.append((name, refers_to, sheet))

    def link_book(self, target, sheets, names=(), kind="externalLinkPath"):
        """A link to a workbook; its number in formulas is that of the call, from 1. sheets is
        {name: {address: value}}, what the file remembers of it; names are (name, refers to, position
        of its sheet or None)."""
        data = "".join(
            f'<sheetData sheetId="{n}">' + "".join(
                f'<row r="{address[1:]}"><cell r="{address}"><v>{value}</v></cell></row>'
                for address, value in cells.items()) + "</sheetData>"
            for n, cells in enumerate(sheets.values()))
        self._links.append((
            '<externalBook xmlns:r="' + RELATIONS + '" r:id="rId1"><sheetNames>'
            + "".join(f"<sheetName val={quoteattr(name)}/>" for name in sheets) + "</sheetNames>"
            + ("<definedNames>" + "".join(
                f'<definedName name="{name}" refersTo={quoteattr("=" + refers_to)}'
                + ("" if sheet is None else f' sheetId="{sheet}"') + "/>"
                for name, refers_to, sheet in names) + "</definedNames>" if names else "")
            + f"<sheetDataSet>{data}</sheetDataSet></externalBook>", kind, target))

    def link_dde(self, service, topic, item, value):
        self._links.append((
            f'<ddeLink ddeService="{service}" ddeTopic="{topic}"><ddeItems>'
            f'<ddeItem name="{item}" advise="1"><values><value><val>{value}</val></value></values>'
            "</ddeItem></ddeItems></ddeLink>", None, None))

    def link_ole(self, program, target, item):
        self._links.append((
            f'<oleLink xmlns:r="{RELATIONS}" r:id="rId1" progId="{program}"><oleItems>'
            f'<oleItem name="{item}" advise="1"/></oleItems></oleLink>', "oleObject", target))

    @contextlib.contextmanager
    def sheet(self, name, last_cell, hidden=False, view=""):
        """Gives the function that writes rows of <sheetData>."""
        self._sheets.append((name, hidden))
        with self._part(f"xl/worksheets/sheet{len(self._sheets)}.xml") as write:
            write(f'<worksheet xmlns="{MAIN}"><dimension ref="A1:{last_cell}"/>{view}<sheetData>')
            yield write
            write("</sheetData></worksheet>")

    def _write_fixed_parts(self):
        count = len(self._sheets)
        relations = [(f"worksheets/sheet{n}.xml", "worksheet") for n in range(1, count + 1)]
        relations.append(("styles.xml", "styles"))
        relations.append(("sharedStrings.xml", "sharedStrings"))
        first_link = len(relations) + 1
        relations += [(f"externalLinks/externalLink{n}.xml", "externalLink")
                      for n in range(1, len(self._links) + 1)]
        self._write_links()
        self._write("xl/sharedStrings.xml", self._shared_strings())
        self._write("xl/styles.xml", STYLES)
        self._write("xl/workbook.xml", self._workbook(first_link))
        self._write("xl/_rels/workbook.xml.rels", relation_part(
            [(target, f"{RELATIONS}/{kind}") for target, kind in relations]))
        self._write("docProps/core.xml", (
            f'<cp:coreProperties xmlns:cp="{CORE}" xmlns:dcterms="http://purl.org/dc/terms/" '
            'xmlns:xsi="http://www.w3.org/2001/XMLSchema-instance"><dcterms:created '
            'xsi:type="dcterms:W3CDTF">2024-01-01T00:00:00Z</dcterms:created>'
            "</cp:coreProperties>"))
        self._write("docProps/app.xml",
                    f'<Properties xmlns="{PROPERTIES}"><TotalTime>0</TotalTime></Properties>')
        self._write("_rels/.rels", relation_part([
            ("xl/workbook.xml", f"{RELATIONS}/officeDocument"),
            ("docProps/core.xml", PACKAGE_RELATIONS + "/metadata/core-properties"),
            ("docProps/app.xml", f"{RELATIONS}/extended-properties")]))
        self._write("[Content_Types].xml", content_types(count, len(self._links)))

    def _write_links(self):
        for n, (content, kind, target) in enumerate(self._links, 1):
            part = f"externalLink{n}.xml"
            self._write(f"xl/externalLinks/{part}",
                        f'<externalLink xmlns="{MAIN}">{content}</externalLink>')
            if kind:
                self._write(f"xl/externalLinks/_rels/{part}.rels",
                            relation_part([(target, link_type(kind))], external=True))

    def _shared_strings(self):
        items = "".join(f"<si><t>{escape(text)}</t></si>" for text in self._strings)
        return (f'<sst xmlns="{MAIN}" count="{self._string_uses}" '
                f'uniqueCount="{len(self._strings)}">{items}</sst>')

    def _workbook(self, first_link):
        sheets = "".join(
            f'<sheet name="{escape(name)}" sheetId="{n}"'
            f'{" state=" + chr(34) + "hidden" + chr(34) if hidden else ""} r:id="rId{n}"/>'
            for n, (name, hidden) in enumerate(self._sheets, 1))
        order = [name for name, _ in self._sheets]
        names = "".join(
            f'<definedName name="{name}"'
            + (f' localSheetId="{order.index(sheet)}"' if sheet else "")
            + f">{escape(refers_to)}</definedName>"
            for name, refers_to, sheet in sorted(self._names, key=lambda n: n[0].lower()))
        names = f"<definedNames>{names}</definedNames>" if names else ""
        links = "".join(f'<externalReference r:id="rId{first_link + n}"/>'
                        for n in range(len(self._links)))
        links = f"<externalReferences>{links}</externalReferences>" if links else ""
        return (f'<workbook xmlns="{MAIN}" xmlns:r="{RELATIONS}"><bookViews><workbookView/>'
                f'</bookViews><sheets>{sheets}</sheets>{links}{names}<calcPr calcId="191029"/></workbook>')


def link_type(kind):
    # A file that its writer could not find again has a relationship of an application's own.
    space = "http://schemas.microsoft.com/office/2006/relationships/xlExternalLinkPath/"
    return (space if kind.startswith("xl") else RELATIONS + "/") + kind


def relation_part(relations, external=False):
    mode = ' TargetMode="External"' if external else ""
    items = "".join(f'<Relationship Id="rId{n}" Type="{kind}" Target={quoteattr(target)}{mode}/>'
                    for n, (target, kind) in enumerate(relations, 1))
    return f'<Relationships xmlns="{PACKAGE_RELATIONS}">{items}</Relationships>'


def content_types(sheet_count, link_count):
    parts = [("/xl/workbook.xml", SPREADSHEET_TYPE + "sheet.main+xml"),
             ("/xl/styles.xml", SPREADSHEET_TYPE + "styles+xml"),
             ("/xl/sharedStrings.xml", SPREADSHEET_TYPE + "sharedStrings+xml"),
             ("/docProps/core.xml", "application/vnd.openxmlformats-package.core-properties+xml"),
             ("/docProps/app.xml",
              "application/vnd.openxmlformats-officedocument.extended-properties+xml")]
    parts += [(f"/xl/worksheets/sheet{n}.xml", SPREADSHEET_TYPE + "worksheet+xml")
              for n in range(1, sheet_count + 1)]
    parts += [(f"/xl/externalLinks/externalLink{n}.xml", SPREADSHEET_TYPE + "externalLink+xml")
              for n in range(1, link_count + 1)]
    items = "".join(f'<Override PartName="{part}" ContentType="{kind}"/>' for part, kind in parts)
    return (f'<Types xmlns="{TYPES}"><Default Extension="rels" '
            'ContentType="application/vnd.openxmlformats-package.relationships+xml"/>'
            f'<Default Extension="xml" ContentType="application/xml"/>{items}</Types>')
