#!/usr/bin/env python3
"""Writes Quillon's bundled sample job: a small IDML document, the files it links to and a checkup
preset for it. The document is meant to raise a few typical problems: a missing font, a missing
link, a low-resolution image, an RGB swatch and an unused swatch.

Run from anywhere: python3 resources/sample/make_sample.py. Only the standard library is used.
"""
import datetime
import os
import plistlib
import struct
import zipfile
import zlib

HERE = os.path.dirname(os.path.abspath(__file__))
LINKS = os.path.join(HERE, "Links")
DOC = os.path.join(HERE, "sample-brochure.idml")
PRESET = os.path.join(HERE, "Sample Print Checks.qnfp")

# Every linked file carries this modification time; the demo restores it after a checkout, since
# git does not keep file times, and the document records the same time for each link.
LINK_TIME = datetime.datetime(2026, 1, 15, 10, 0, 0, tzinfo=datetime.timezone.utc)
# The folder the designer worked in on another computer: the links are found again beside the
# document by name.
ORIGIN = "file:/Users/studio/Jobs/Harbour%20Festival/Links/"


def png(width, height, ppi):
    def chunk(kind, data):
        return struct.pack(">I", len(data)) + kind + data + struct.pack(">I", zlib.crc32(kind + data) & 0xFFFFFFFF)
    rows = bytearray()
    for y in range(height):
        rows.append(0)
        for x in range(width):
            rows += bytes(((x * 255) // width, (y * 255) // height, 160))
    ppm = round(ppi / 0.0254)
    return (b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", struct.pack(">IIBBBBB", width, height, 8, 2, 0, 0, 0))
            + chunk(b"pHYs", struct.pack(">IIB", ppm, ppm, 1))
            + chunk(b"IDAT", zlib.compress(bytes(rows), 9)) + chunk(b"IEND", b""))


def psd_cmyk(width, height):
    header = b"8BPS" + struct.pack(">H6xHIIHH", 1, 4, height, width, 8, 4)
    # Resolution info (resource 1005): 300 ppi both ways.
    res = struct.pack(">IHHIHH", 300 << 16, 1, 1, 300 << 16, 1, 1)
    resources = b"8BIM" + struct.pack(">H", 1005) + b"\x00\x00" + struct.pack(">I", len(res)) + res
    body = struct.pack(">I", 0) + struct.pack(">I", len(resources)) + resources + struct.pack(">I", 0)
    pixels = bytearray()
    for channel in range(4):
        for y in range(height):
            for x in range(width):
                pixels.append((x * 7 + y * 3 + channel * 40) % 256)
    return header + body + struct.pack(">H", 0) + bytes(pixels)


def tiff_gray(width, height, ppi):
    pixels = bytes(((x + y) * 255) // (width + height) for y in range(height) for x in range(width))
    entries = [
        (256, 4, 1, width), (257, 4, 1, height), (258, 3, 1, 8), (259, 3, 1, 1), (262, 3, 1, 1),
        (273, 4, 1, 0), (277, 3, 1, 1), (278, 4, 1, height), (279, 4, 1, len(pixels)),
        (282, 5, 1, 0), (283, 5, 1, 0), (296, 3, 1, 2),
    ]
    ifd_offset = 8
    ifd_size = 2 + 12 * len(entries) + 4
    rational_offset = ifd_offset + ifd_size
    pixel_offset = rational_offset + 16
    out = bytearray(b"II*\x00" + struct.pack("<I", ifd_offset))
    out += struct.pack("<H", len(entries))
    for tag, kind, count, value in entries:
        if tag == 273:
            value = pixel_offset
        elif tag == 282:
            value = rational_offset
        elif tag == 283:
            value = rational_offset + 8
        if kind == 3:
            out += struct.pack("<HHIHH", tag, kind, count, value, 0)
        else:
            out += struct.pack("<HHII", tag, kind, count, value)
    out += struct.pack("<I", 0)
    out += struct.pack("<IIII", ppi, 1, ppi, 1)
    return bytes(out) + pixels


EPS = """%!PS-Adobe-3.0 EPSF-3.0
%%Creator: Quillon sample generator
%%Title: logo-spot.eps
%%BoundingBox: 0 0 144 72
%%HiResBoundingBox: 0 0 144 72
%%DocumentCustomColors: (PANTONE 185 C)
%%CMYKCustomColor: 0 0.91 0.76 0 (PANTONE 185 C)
%%DocumentFonts: Helvetica-Bold
%%DocumentNeededFonts: Helvetica-Bold
%%EndComments
%%BeginProlog
%%EndProlog
/Helvetica-Bold findfont 28 scalefont setfont
0 0.91 0.76 0 (PANTONE 185 C) 0 findcmykcustomcolor 1 setcustomcolor
12 24 moveto (HARBOUR) show
showpage
%%EOF
"""


def write_links():
    os.makedirs(LINKS, exist_ok=True)
    files = {
        "photo-cmyk.psd": psd_cmyk(96, 64),
        "poster-rgb.png": png(120, 80, 72),
        # CR LF line ends, as Illustrator writes its EPS comments (readers rely on them).
        "logo-spot.eps": EPS.replace("\n", "\r\n").encode("ascii"),
        "scan-gray.tif": tiff_gray(64, 48, 300),
    }
    stamp = LINK_TIME.timestamp()
    for name, data in files.items():
        path = os.path.join(LINKS, name)
        with open(path, "wb") as f:
            f.write(data)
        os.utime(path, (stamp, stamp))
    return {name: len(data) for name, data in files.items()}


def filetime(when):
    return int((when - datetime.datetime(1601, 1, 1, tzinfo=datetime.timezone.utc)).total_seconds() * 10_000_000)


def link_xml(self_id, name, fmt, size):
    local = LINK_TIME.astimezone().strftime("%Y-%m-%dT%H:%M:%S")
    return (f'<Link Self="{self_id}" LinkResourceURI="{ORIGIN}{name}" LinkResourceFormat="$ID/{fmt}" '
            f'StoredState="Normal" LinkResourceSize="0~{size:x}" LinkImportModificationTime="{local}" '
            f'LinkImportStamp="file {filetime(LINK_TIME)} {size}" LinkObjectModificationTime="{local}"/>')


def frame(self_id, x, y, w, h, graphic):
    points = "".join(f'<PathPointType Anchor="{px} {py}" LeftDirection="{px} {py}" RightDirection="{px} {py}"/>'
                     for px, py in ((0, 0), (0, h), (w, h), (w, 0)))
    return (f'<Rectangle Self="{self_id}" ContentType="GraphicType" FillColor="Swatch/None" '
            f'StrokeColor="Swatch/None" ItemTransform="1 0 0 1 {x} {y}">'
            f'<Properties><PathGeometry><GeometryPathType PathOpen="false"><PathPointArray>{points}'
            f'</PathPointArray></GeometryPathType></PathGeometry></Properties>{graphic}</Rectangle>')


def image(kind, self_id, scale, space, actual, effective, link):
    extra = f' Space="$ID/#Links_{space}"' if space else ""
    ppi = f' ActualPpi="{actual} {actual}" EffectivePpi="{effective} {effective}"' if actual else ""
    return (f'<{kind} Self="{self_id}" ItemTransform="{scale} 0 0 {scale} 0 0"{extra}{ppi}>{link}</{kind}>')


def text_frame(self_id, story, x, y, w, h, fill="Swatch/None"):
    points = "".join(f'<PathPointType Anchor="{px} {py}" LeftDirection="{px} {py}" RightDirection="{px} {py}"/>'
                     for px, py in ((0, 0), (0, h), (w, h), (w, 0)))
    return (f'<TextFrame Self="{self_id}" ParentStory="{story}" ContentType="TextType" FillColor="{fill}" '
            f'ItemTransform="1 0 0 1 {x} {y}"><Properties><PathGeometry><GeometryPathType PathOpen="false">'
            f'<PathPointArray>{points}</PathPointArray></GeometryPathType></PathGeometry></Properties></TextFrame>')


PAGE_W, PAGE_H = 595.2755905511812, 841.8897637795276
NS = 'xmlns:idPkg="http://ns.adobe.com/AdobeInDesign/idml/1.0/packaging" DOMVersion="18.0"'


def page(self_id, name, x, master="uM"):
    return (f'<Page Self="{self_id}" Name="{name}" AppliedMaster="{master}" '
            f'GeometricBounds="0 0 {PAGE_H} {PAGE_W}" ItemTransform="1 0 0 1 {x} {-PAGE_H / 2}"/>')


def spread(self_id, y, pages, binding, items):
    return (f'<?xml version="1.0" encoding="UTF-8" standalone="yes"?>\n<idPkg:Spread {NS}>'
            f'<Spread Self="{self_id}" PageCount="{len(pages)}" BindingLocation="{binding}" '
            f'ItemTransform="1 0 0 1 0 {y}"><FlattenerPreference/>{"".join(pages)}{"".join(items)}</Spread>'
            f'</idPkg:Spread>')


def story(self_id, *paragraphs):
    body = "".join(paragraphs)
    return (f'<?xml version="1.0" encoding="UTF-8" standalone="yes"?>\n<idPkg:Story {NS}>'
            f'<Story Self="{self_id}">{body}</Story></idPkg:Story>')


def run(text, style="CharacterStyle/$ID/[No character style]", font=None, fontstyle=None, fill=None):
    attrs = f'AppliedCharacterStyle="{style}"'
    if fontstyle:
        attrs += f' FontStyle="{fontstyle}"'
    if fill:
        attrs += f' FillColor="{fill}"'
    props = f'<Properties><AppliedFont type="string">{font}</AppliedFont></Properties>' if font else ""
    return f'<CharacterStyleRange {attrs}>{props}<Content>{text}</Content></CharacterStyleRange>'


def paragraph(style, *runs, br=True):
    inner = "".join(runs) + ('<Br/>' if br else "")
    return f'<ParagraphStyleRange AppliedParagraphStyle="ParagraphStyle/{style}">{inner}</ParagraphStyleRange>'


def build_idml(sizes):
    files = {}
    files["META-INF/container.xml"] = (
        '<?xml version="1.0" encoding="UTF-8" standalone="yes"?>\n<container version="1.0" '
        'xmlns="urn:oasis:names:tc:opendocument:xmlns:container"><rootfiles><rootfile full-path="designmap.xml" '
        'media-type="text/xml"/></rootfiles></container>')
    files["designmap.xml"] = (
        '<?xml version="1.0" encoding="UTF-8" standalone="yes"?>\n'
        '<?aid style="50" type="document" readerVersion="6.0" featureSet="257" product="18.0(28)" ?>\n'
        f'<Document {NS} Self="d" StoryList="uS1 uS2" Name="sample-brochure.indd">'
        '<idPkg:Graphic src="Resources/Graphic.xml"/><idPkg:Fonts src="Resources/Fonts.xml"/>'
        '<idPkg:Styles src="Resources/Styles.xml"/><idPkg:Preferences src="Resources/Preferences.xml"/>'
        '<Layer Self="uL" Name="Layer 1" Visible="true" Printable="true"/>'
        '<idPkg:MasterSpread src="MasterSpreads/MasterSpread_uM.xml"/>'
        '<idPkg:Spread src="Spreads/Spread_u1.xml"/><idPkg:Spread src="Spreads/Spread_u2.xml"/>'
        '<idPkg:Story src="Stories/Story_uS1.xml"/><idPkg:Story src="Stories/Story_uS2.xml"/>'
        '</Document>')
    files["Resources/Preferences.xml"] = (
        f'<?xml version="1.0" encoding="UTF-8" standalone="yes"?>\n<idPkg:Preferences {NS}>'
        f'<DocumentPreference PageHeight="{PAGE_H}" PageWidth="{PAGE_W}" PagesPerDocument="3" FacingPages="true" '
        'DocumentBleedTopOffset="8.503937007874017" DocumentBleedBottomOffset="8.503937007874017" '
        'DocumentBleedInsideOrLeftOffset="8.503937007874017" DocumentBleedOutsideOrRightOffset="8.503937007874017" '
        'DocumentBleedUniformSize="true" SlugTopOffset="0" SlugBottomOffset="0" SlugInsideOrLeftOffset="0" '
        'SlugRightOrOutsideOffset="0" DocumentSlugUniformSize="false"/>'
        '<ViewPreference HorizontalMeasurementUnits="Millimeters" VerticalMeasurementUnits="Millimeters"/>'
        '</idPkg:Preferences>')
    files["Resources/Graphic.xml"] = (
        f'<?xml version="1.0" encoding="UTF-8" standalone="yes"?>\n<idPkg:Graphic {NS}>'
        '<Color Self="Color/Black" Model="Process" Space="CMYK" ColorValue="0 0 0 100" ColorOverride="Specialblack" '
        'Name="Black"/>'
        '<Color Self="Color/Paper" Model="Process" Space="CMYK" ColorValue="0 0 0 0" ColorOverride="Specialpaper" '
        'Name="Paper"/>'
        '<Color Self="Color/Registration" Model="Registration" Space="CMYK" ColorValue="100 100 100 100" '
        'ColorOverride="Specialregistration" Name="Registration"/>'
        '<Color Self="Color/Harbour Red" Model="Spot" Space="CMYK" ColorValue="0 91 76 0" ColorOverride="Normal" '
        'Name="PANTONE 185 C"/>'
        '<Color Self="Color/Web Blue" Model="Process" Space="RGB" ColorValue="0 102 204" ColorOverride="Normal" '
        'Name="Web Blue"/>'
        '<Color Self="Color/Sea Green" Model="Process" Space="CMYK" ColorValue="80 0 60 10" ColorOverride="Normal" '
        'Name="Sea Green"/>'
        '<Swatch Self="Swatch/None" Name="None" ColorEditable="false" ColorRemovable="false"/>'
        '</idPkg:Graphic>')
    files["Resources/Fonts.xml"] = (
        f'<?xml version="1.0" encoding="UTF-8" standalone="yes"?>\n<idPkg:Fonts {NS}>'
        '<FontFamily Self="diFamDejaVu" Name="DejaVu Sans">'
        '<Font Self="diFamDejaVu%3aBook" FontFamily="DejaVu Sans" Name="DejaVu Sans Book" PostScriptName="DejaVuSans" '
        'Status="Installed" FontStyleName="Book" FontType="TrueType"/>'
        '<Font Self="diFamDejaVu%3aBold" FontFamily="DejaVu Sans" Name="DejaVu Sans Bold" '
        'PostScriptName="DejaVuSans-Bold" Status="Installed" FontStyleName="Bold" FontType="TrueType"/>'
        '</FontFamily>'
        '<FontFamily Self="diFamGaramond" Name="Garamond Premier Pro">'
        '<Font Self="diFamGaramond%3aItalic" FontFamily="Garamond Premier Pro" Name="Garamond Premier Pro Italic" '
        'PostScriptName="GaramondPremrPro-It" Status="NotAvailable" FontStyleName="Italic" '
        'FontType="OpenTypeCFF"/></FontFamily>'
        '</idPkg:Fonts>')
    files["Resources/Styles.xml"] = (
        f'<?xml version="1.0" encoding="UTF-8" standalone="yes"?>\n<idPkg:Styles {NS}>'
        '<RootCharacterStyleGroup Self="uCG"><CharacterStyle Self="CharacterStyle/$ID/[No character style]" '
        'Name="$ID/[No character style]"/></RootCharacterStyleGroup>'
        '<RootParagraphStyleGroup Self="uPG">'
        '<ParagraphStyle Self="ParagraphStyle/$ID/[No paragraph style]" Name="$ID/[No paragraph style]" '
        'FontStyle="Book" PointSize="10" FillColor="Color/Black"><Properties>'
        '<AppliedFont type="string">DejaVu Sans</AppliedFont><Leading type="unit">12</Leading></Properties>'
        '</ParagraphStyle>'
        '<ParagraphStyle Self="ParagraphStyle/Headline" Name="Headline" FontStyle="Bold" PointSize="28" '
        'FillColor="Color/Harbour Red"><Properties><BasedOn type="object">ParagraphStyle/$ID/[No paragraph style]'
        '</BasedOn><Leading type="unit">32</Leading></Properties></ParagraphStyle>'
        '<ParagraphStyle Self="ParagraphStyle/Body" Name="Body" PointSize="10"><Properties><BasedOn type="object">'
        'ParagraphStyle/$ID/[No paragraph style]</BasedOn><Leading type="unit">13</Leading></Properties>'
        '</ParagraphStyle>'
        '<ParagraphStyle Self="ParagraphStyle/Caption" Name="Caption" PointSize="8"><Properties><BasedOn '
        'type="object">ParagraphStyle/Body</BasedOn></Properties></ParagraphStyle>'
        '</RootParagraphStyleGroup>'
        '<RootObjectStyleGroup Self="uOG"><ObjectStyle Self="ObjectStyle/$ID/[None]" Name="$ID/[None]"/>'
        '</RootObjectStyleGroup></idPkg:Styles>')
    files["MasterSpreads/MasterSpread_uM.xml"] = (
        f'<?xml version="1.0" encoding="UTF-8" standalone="yes"?>\n<idPkg:MasterSpread {NS}>'
        '<MasterSpread Self="uM" Name="A-Master" NamePrefix="A" BaseName="Master" PageCount="2" '
        'ItemTransform="1 0 0 1 0 0">'
        f'<Page Self="uMp1" Name="A" GeometricBounds="0 0 {PAGE_H} {PAGE_W}" ItemTransform="1 0 0 1 {-PAGE_W} 0"/>'
        f'<Page Self="uMp2" Name="A" GeometricBounds="0 0 {PAGE_H} {PAGE_W}" ItemTransform="1 0 0 1 0 0"/>'
        + frame("uMf1", -PAGE_W + 36, 780, 120, 40,
                image("EPS", "uMg1", "0.8333", "", None, None, link_xml("uMk1", "logo-spot.eps", "EPS",
                                                                      sizes["logo-spot.eps"])))
        + '</MasterSpread></idPkg:MasterSpread>')
    # Spread 1: the cover, a single right-hand page.
    cover = [
        frame("uF1", 36, -PAGE_H / 2 + 120, 520, 346,
              image("Image", "uG1", "0.9", "CMYK", 300, 333,
                    link_xml("uK1", "photo-cmyk.psd", "Photoshop", sizes["photo-cmyk.psd"]))),
        text_frame("uT1", "uS1", 36, -PAGE_H / 2 + 40, 520, 60),
    ]
    files["Spreads/Spread_u1.xml"] = spread("u1", 0, [page("uP1", "1", 0)], 0, cover)
    # Spread 2: two facing pages.
    inside = [
        frame("uF2", -PAGE_W + 40, -PAGE_H / 2 + 60, 480, 320,
              image("Image", "uG2", "4.0", "RGB", 72, 18,
                    link_xml("uK2", "poster-rgb.png", "Portable Network Graphics (PNG)", sizes["poster-rgb.png"]))),
        frame("uF3", 40, -PAGE_H / 2 + 60, 240, 180,
              image("Image", "uG3", "0.5", "Grayscale", 300, 600,
                    link_xml("uK3", "scan-gray.tif", "TIFF", sizes["scan-gray.tif"]))),
        frame("uF4", 40, -PAGE_H / 2 + 300, 240, 180,
              image("Image", "uG4", "0.5", "CMYK", 300, 600, link_xml("uK4", "harbour-map.tif", "TIFF", 184320))),
        text_frame("uT2", "uS2", 300, -PAGE_H / 2 + 60, 250, 700, fill="Color/Web Blue"),
    ]
    files["Spreads/Spread_u2.xml"] = spread("u2", PAGE_H + 20, [page("uP2", "2", -PAGE_W), page("uP3", "3", 0)], 1,
                                            inside)
    files["Stories/Story_uS1.xml"] = story("uS1", paragraph("Headline", run("Harbour Festival 2026"), br=False))
    anchored = (frame("uF5", 0, 0, 100, 60, image("Image", "uG5", "0.25", "RGB", 72, 288,
                link_xml("uK5", "poster-rgb.png", "Portable Network Graphics (PNG)", sizes["poster-rgb.png"]))))
    files["Stories/Story_uS2.xml"] = story(
        "uS2",
        paragraph("Body", run("Three days of music, boats and food on the quay. ")),
        paragraph("Body", run("Tickets at the harbour office.", font="Garamond Premier Pro", fontstyle="Italic")),
        paragraph("Caption", run("Map of the quay: "), '<CharacterStyleRange AppliedCharacterStyle='
                  '"CharacterStyle/$ID/[No character style]">' + anchored + '</CharacterStyleRange>', br=False))
    with zipfile.ZipFile(DOC, "w") as z:
        z.writestr(zipfile.ZipInfo("mimetype", (2026, 1, 15, 10, 0, 0)), "application/vnd.adobe.indesign-idml-package",
                   compress_type=zipfile.ZIP_STORED)
        for name, text in files.items():
            z.writestr(zipfile.ZipInfo(name, (2026, 1, 15, 10, 0, 0)), text.encode("utf-8"),
                       compress_type=zipfile.ZIP_DEFLATED)


def write_preset():
    missing = {"attribute": "Status", "attributeKey": "status", "condition": "is", "value": "Missing"}
    preset = {
        "name": "Sample Print Checks",
        "Fonts": {"conditions": [missing], "embedBtn": 0},
        "Links": {"conditions": [missing], "sizeBelowField": "", "sizeAboveField": "", "sizeBelowUnitsPopup": "MB",
                  "sizeAboveUnitsPopup": "MB", "sizeBelowBytes": 0, "sizeAboveBytes": 0, "resBelowField": "150",
                  "resAboveField": "", "resBWBelowField": "", "resBWAboveField": "", "fontsEpsBtn": 0,
                  "fontsEpsMtrx": 0, "scaledNonPropBtn": 1, "nonPrintBtn": 0},
        "Colors": {"spot": 0, "process": 0, "RGB": 1, "CMYK": 0, "LAB": 0, "HSB": 0, "unused": 1,
                   "regAppliedToText": 0},
        "Document": {},
        "Options": {},
    }
    with open(PRESET, "wb") as f:
        plistlib.dump(preset, f)


if __name__ == "__main__":
    write_preset()
    build_idml(write_links())
    print("wrote", DOC)
