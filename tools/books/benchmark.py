"""Large books for the benchmarks, written row by row, with right cached values."""

from .package import BookWriter, column_letters

FAST = 1  # deflate level
ROWS_PER_WRITE = 2000


def write_rows(write, rows):
    """Hands the texts of rows on in pieces large enough to compress fast."""
    pending = []
    for row in rows:
        pending.append(row)
        if len(pending) == ROWS_PER_WRITE:
            write("".join(pending))
            pending.clear()
    write("".join(pending))


def chain(path, rows=1_000_000, shared=False):
    """A running total: constants in A, B{n} = B{n-1} + A{n}. The end is Sheet1!B{rows}."""

    def texts():
        total = 1
        yield '<row r="1"><c r="A1"><v>1</v></c><c r="B1"><f>A1</f><v>1</v></c></row>'
        for n in range(2, rows + 1):
            amount = n % 97
            total += amount
            if not shared:
                formula = f"<f>B{n - 1}+A{n}</f>"
            elif n == 2:
                formula = f'<f t="shared" ref="B2:B{rows}" si="0">B1+A2</f>'
            else:
                formula = '<f t="shared" si="0"/>'
            yield (f'<row r="{n}"><c r="A{n}"><v>{amount}</v></c>'
                   f'<c r="B{n}">{formula}<v>{total}</v></c></row>')

    with BookWriter(path, FAST) as book, book.sheet("Sheet1", f"B{rows}") as write:
        write_rows(write, texts())


def fan(path, sums=100, cells=1_000_000):
    """A column of constants under each SUM, and the total of the sums in Sums!B1."""
    rows = cells // sums
    columns = [column_letters(n) for n in range(1, sums + 1)]

    def texts():
        for n in range(1, rows + 1):
            constants = "".join(f'<c r="{column}{n}"><v>{(n * 7 + k) % 1000}</v></c>'
                                for k, column in enumerate(columns))
            yield f'<row r="{n}">{constants}</row>'

    totals = [sum((n * 7 + k) % 1000 for n in range(1, rows + 1)) for k in range(sums)]
    with BookWriter(path, FAST) as book:
        with book.sheet("Data", f"{columns[-1]}{rows}") as write:
            write_rows(write, texts())
        with book.sheet("Sums", f"B{sums}") as write:
            for n, (column, total) in enumerate(zip(columns, totals), 1):
                grand = f'<c r="B1"><f>SUM(A1:A{sums})</f><v>{sum(totals)}</v></c>' * (n == 1)
                write(f'<row r="{n}"><c r="A{n}"><f>SUM(Data!{column}1:{column}{rows})</f>'
                      f"<v>{total}</v></c>{grand}</row>")


# 2*cos(60 degrees * k). Each is the sum of its two neighbours, so a grid whose cell (i, j) holds
# element (i - j) obeys "left plus upper" with small integers at any size.
GRID_VALUES = (2, 1, -1, -2, -1, 1)


def grid(path, rows=1000, columns=1000):
    """Each cell is its left plus its upper neighbour. The end is the last cell of Sheet1."""
    letters = [column_letters(n) for n in range(1, columns + 1)]

    def cell(row, k):
        value = GRID_VALUES[(row - 1 - k) % 6]
        if row == 1 or k == 0:
            return f'<c r="{letters[k]}{row}"><v>{value}</v></c>'
        return (f'<c r="{letters[k]}{row}"><f>{letters[k - 1]}{row}+{letters[k]}{row - 1}</f>'
                f"<v>{value}</v></c>")

    def texts():
        for row in range(1, rows + 1):
            yield f'<row r="{row}">{"".join(cell(row, k) for k in range(columns))}</row>'

    with BookWriter(path, FAST) as book, book.sheet("Sheet1", f"{letters[-1]}{rows}") as write:
        write_rows(write, texts())


def model(path, sheets=20, rows=2000):
    """Sheets that build on each other, five formulas of different kinds in each row; Total!B1
    rests on all of them."""
    rate, share, codes = 1.05, 0.1, 100
    lookup = [n * 0.25 for n in range(1, codes + 1)]

    def texts(number, label, ends):
        before = f"Sheet{number - 1}!"
        for n in range(2, rows + 2):
            base, code = (n * 13 + number) % 500, (n * 31 + number) % codes + 1
            carried = ends[n - 2] if number > 1 else code
            source = f"{before}H{n}" if number > 1 else f"C{n}"
            d = base * rate + carried * share
            e = d - code if d > code else code
            f = lookup[code - 1]
            g = d + e + f
            h = g if n == 2 else ends[n - 3] * share + g
            ends[n - 2] = h
            previous = "" if n == 2 else f"H{n - 1}*Share+"
            yield (f'<row r="{n}"><c r="A{n}" t="s"><v>{label}</v></c>'
                   f'<c r="B{n}"><v>{base}</v></c><c r="C{n}"><v>{code}</v></c>'
                   f'<c r="D{n}"><f>B{n}*Rate+{source}*0.1</f><v>{d!r}</v></c>'
                   f'<c r="E{n}"><f>IF(D{n}&gt;C{n},D{n}-C{n},C{n})</f><v>{e!r}</v></c>'
                   f'<c r="F{n}"><f>VLOOKUP(C{n},Lookup!$A$2:$B${codes + 1},2,FALSE)</f>'
                   f"<v>{f!r}</v></c>"
                   f'<c r="G{n}"><f>SUM(D{n}:F{n})</f><v>{g!r}</v></c>'
                   f'<c r="H{n}"><f>{previous}G{n}</f><v>{h!r}</v></c></row>')

    with BookWriter(path, FAST) as book:
        headings = ("Line", "Base", "Code", "Amount", "Net", "Fee", "Sum", "Carried")
        last, ends = [], [0.0] * rows
        for number in range(1, sheets + 1):
            with book.sheet(f"Sheet{number}", f"H{rows + 1}") as write:
                titles = "".join(f'<c r="{column_letters(k)}1" t="s"><v>{book.string(text)}</v></c>'
                                 for k, text in enumerate(headings, 1))
                write(f'<row r="1">{titles}</row>')
                write_rows(write, texts(number, book.string("Item"), ends))
            last.append(ends[-1])
        with book.sheet("Lookup", f"B{codes + 1}") as write:
            for n, value in enumerate(lookup, 2):
                write(f'<row r="{n}"><c r="A{n}"><v>{n - 1}</v></c>'
                      f'<c r="B{n}"><v>{value!r}</v></c></row>')
        total = 0.0
        for value in last:
            total += value
        with book.sheet("Total", "B3") as write:
            ends_of_sheets = ",".join(f"Sheet{k}!H{rows + 1}" for k in range(1, sheets + 1))
            write(f'<row r="1"><c r="B1"><f>SUM({ends_of_sheets})</f><v>{total!r}</v></c></row>'
                  f'<row r="2"><c r="B2"><v>{rate}</v></c></row>'
                  f'<row r="3"><c r="B3"><v>{share}</v></c></row>')
        book.name("Rate", "Total!$B$2")
        book.name("Share", "Total!$B$3")
