"""The shipped books that refer to each other, in every form that there is.

group.xlsx → sales.xlsx → costs.xlsx → rates.xlsx (encrypted), and sales.xlsx → group.xlsx again.
group.xlsx also refers to a book with a circular reference, to one that is not there, to one on the
internet, and to two other applications.
"""

import io
import pathlib
import zipfile

from .encryption import encrypt
from .package import DECIMAL, PERCENT, BookWriter
from .plan import Sheet

PASSWORD = "sterling"

VAT, FREIGHT, DISCOUNT = 0.2, 12.5, 0.05
SALARIES, SHARE_OF_FREIGHT = 410, 4
TARGET = 900
NORTH, SOUTH = (300, 340, 290), (150, 180, 160)
GROWTH, SHARE = 0.04, 0.6
# What group.xlsx remembers of sources that nobody can reach.
FORECAST, PRICE_INDEX, EURO = 1010, 1.07, 1.09

costs_total = SALARIES + SHARE_OF_FREIGHT * FREIGHT
north_total, south_total = sum(NORTH), sum(SOUTH)


def rates():
    sheet = Sheet("Rates")
    sheet.line(2, "VAT", VAT, style=PERCENT)
    sheet.line(3, "Freight", FREIGHT, style=DECIMAL)
    sheet.line(4, "Discount", DISCOUNT, style=PERCENT)
    bytes_of_package = io.BytesIO()
    with BookWriter(bytes_of_package, compression=zipfile.ZIP_STORED) as book:
        sheet.write(book)
        book.name("Vat", "Rates!$B$2")
    return encrypt(bytes_of_package.getvalue(), PASSWORD, "rates.xlsx")


def costs(path):
    sheet = Sheet("Costs")
    sheet.line(2, "Salaries", SALARIES)
    sheet.line(3, "Share of freight", SHARE_OF_FREIGHT)
    sheet.line(4, "Costs", costs_total, "B2+B3*[1]Rates!B3")
    with BookWriter(path) as book:
        book.link_book("rates.xlsx", {"Rates": {"B3": FREIGHT}})
        sheet.write(book)


def sales(path):
    north, south = Sheet("North"), Sheet("South")
    for sheet, figures in ((north, NORTH), (south, SOUTH)):
        for row, (label, figure) in enumerate(zip(("Widgets", "Gadgets", "Parts"), figures), 2):
            sheet.line(row, label, figure)
        sheet.line(5, "Sales", sum(figures), "SUM(B2:B4)")
    north.line(6, "After costs", north_total - costs_total, "B5-[1]Costs!B4")
    north.line(7, "Against target", north_total / TARGET, "B5/[2]Group!B2", PERCENT)
    north.line(8, "Growth", GROWTH, style=PERCENT)
    north.line(9, "Share of the group", SHARE, style=PERCENT)
    with BookWriter(path) as book:
        book.link_book("costs.xlsx", {"Costs": {"B4": costs_total}})
        book.link_book("group.xlsx", {"Group": {"B2": TARGET}})
        north.write(book)
        south.write(book)
        book.name("Growth", "North!$B$8")
        book.name("Share", "North!$B$9", sheet="North")


def loop(path):
    sheet = Sheet("Loop")
    sheet.line(2, "Interest", 0, "B3*0.1")
    sheet.line(3, "Debt", 0, "B2+100")
    sheet.line(4, "Opening debt", 250)
    with BookWriter(path) as book:
        sheet.write(book)


def group(path):
    net = north_total - costs_total
    sheet = Sheet("Group")
    sheet.line(2, "Target", TARGET)
    sheet.line(3, "Sales, a cell", north_total, "[1]North!B5")
    sheet.line(4, "Sales, a range", north_total, "SUM([1]North!B2:B4)")
    sheet.line(5, "Sales, both regions", north_total + south_total, "SUM([1]North:South!B5)")
    sheet.line(6, "Growth, a name of the book", GROWTH, "[1]!Growth", PERCENT)
    sheet.line(7, "Share, a name of a sheet", SHARE, "[1]North!Share", PERCENT)
    sheet.line(8, "Sales, by a name of this book", north_total, "NorthSales")
    sheet.line(9, "After costs, along a chain", net, "[1]North!B6")
    sheet.line(10, "VAT, in an encrypted book", net * VAT, "B9*[2]Rates!B2")
    sheet.line(11, "VAT, a name there", VAT, "[2]!Vat", PERCENT)
    sheet.line(12, "Debt, in a book with a circle", 250, "[3]Loop!B4")
    sheet.line(13, "Forecast, in a book that is gone", FORECAST, "[4]Plan!B2")
    sheet.line(14, "Prices, on the internet", PRICE_INDEX, "[5]Prices!B2", DECIMAL)
    sheet.line(15, "Euro, from an application", EURO, "[6]!EURUSD", DECIMAL)
    sheet.line(16, "Note, from a document", "see note", "[7]!'!OLE_LINK1'")
    sheet.line(17, "Result", net - net * VAT, "B9-B10")
    sheet.line(18, "Everything", net + FORECAST + 250 + EURO, "B9+B12+B13+B15")
    with BookWriter(path) as book:
        book.link_book("sales.xlsx", {
            "North": {"B2": NORTH[0], "B3": NORTH[1], "B4": NORTH[2], "B5": north_total, "B6": net,
                      "B8": GROWTH, "B9": SHARE},
            "South": {"B5": south_total}},
            [("Growth", "North!$B$8", None), ("Share", "North!$B$9", 0)])
        # As a machine with drives wrote it: it is found beside this book.
        book.link_book("file:///D:\\Finance\\Rates\\rates.xlsx", {"Rates": {"B2": VAT}},
                       [("Vat", "Rates!$B$2", None)])
        book.link_book("loop.xlsx", {"Loop": {"B4": 250}})
        book.link_book("forecast.xlsx", {"Plan": {"B2": FORECAST}}, kind="xlPathMissing")
        book.link_book("https://books.example/index/prices.xlsx", {"Prices": {"B2": PRICE_INDEX}})
        book.link_dde("Quotes", "Currencies", "EURUSD", EURO)
        book.link_ole("Word.Document.12", "file:///D:\\Finance\\Notes\\note.docx", "!OLE_LINK1")
        sheet.write(book)
        book.name("NorthSales", "[1]North!$B$5")


def write(folder):
    folder = pathlib.Path(folder)
    folder.mkdir(parents=True, exist_ok=True)
    (folder / "rates.xlsx").write_bytes(rates())
    costs(folder / "costs.xlsx")
    sales(folder / "sales.xlsx")
    loop(folder / "loop.xlsx")
    group(folder / "group.xlsx")
