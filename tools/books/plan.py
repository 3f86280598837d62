"""The shipped example: a five-year plan of a small maker of widgets, with one error in it.

Every formula stands beside the Python expression that gives its value. NaN stands for #DIV/0!,
the only error of the book: it spreads through arithmetic as the error does.
"""

import datetime
import math
from xml.sax.saxutils import escape

from .package import DATE, DECIMAL, GENERAL, HEADING, PERCENT, WHOLE, YEAR, BookWriter

COLUMNS = "BCDEF"
YEARS = [2025, 2026, 2027, 2028, 2029]
FROZEN = ('<sheetViews><sheetView workbookViewId="0"><pane xSplit="1" ySplit="1" topLeftCell="B2" '
          'activePane="bottomRight" state="frozen"/></sheetView></sheetViews>'
          '<cols><col min="1" max="1" width="28" customWidth="1"/></cols>')


def divide(dividend, divisor):
    return dividend / divisor if divisor else math.nan


def decide(condition_value, text):
    """The result of an IF whose condition rests on condition_value."""
    return math.nan if math.isnan(condition_value) else text


def lowest(values):
    return math.nan if any(map(math.isnan, values)) else min(values)


def serial(year, month, day):
    return (datetime.date(year, month, day) - datetime.date(1899, 12, 30)).days


class Sheet:
    """Cells by row; each is (column letter, value, formula attributes and text, style)."""

    def __init__(self, name, hidden=False, headings=None):
        self.name = name
        self.hidden = hidden
        self.rows = {}
        self._shared_groups = 0
        self.put("A", 1, name, style=HEADING)
        if headings:
            self.across(1, None, YEARS, headings, style=YEAR)

    def put(self, column, row, value, formula=None, style=GENERAL, attributes=""):
        element = "" if formula is None else f"<f{attributes}>{escape(formula)}</f>"
        self.rows.setdefault(row, []).append((column, value, element, style))

    def line(self, row, label, value, formula=None, style=GENERAL):
        """One label with one value in column B."""
        self.put("A", row, label)
        self.put("B", row, value, formula, style)

    def across(self, row, label, values, formula=None, first=None, style=WHOLE, shared=False):
        """One value per year. {c}, {p} and {n} in a formula are the column of the year, the one
        before and the one after. first, if given, is the formula of the first year; "" makes it
        a constant. shared writes the rest of the years as one shared formula."""
        if label is not None:
            self.put("A", row, label)
        if shared:
            group, self._shared_groups = self._shared_groups, self._shared_groups + 1
        for n, value in enumerate(values):
            if value is None:
                continue
            column, text, attributes = COLUMNS[n], formula, ""
            if n == 0 and first is not None:
                text = first or None
            elif shared and not any(" ref=" in cell[2] for cell in self.rows.get(row, [])):
                attributes = f' t="shared" ref="{column}{row}:F{row}" si="{group}"'
            elif shared:
                text, attributes = "", f' t="shared" si="{group}"'
            if text:
                text = text.format(c=column, p=chr(ord(column) - 1), n=chr(ord(column) + 1))
            self.put(column, row, value, text, style, attributes)

    def write(self, book):
        last_column = max(cell[0] for cells in self.rows.values() for cell in cells)
        with book.sheet(self.name, f"{last_column}{max(self.rows)}", self.hidden, FROZEN) as write:
            for row in sorted(self.rows):
                write(f'<row r="{row}">')
                for column, value, formula, style in self.rows[row]:
                    write(cell_element(book, f"{column}{row}", value, formula, style))
                write("</row>")


def cell_element(book, address, value, formula, style):
    kind, text = "", value
    if isinstance(value, str):
        kind = ' t="str"' if formula else ' t="s"'
        text = escape(value) if formula else book.string(value)
    elif math.isnan(value):
        kind, text = ' t="e"', "#DIV/0!"
    style_attribute = f' s="{style}"' if style else ""
    return f'<c r="{address}"{style_attribute}{kind}>{formula}<v>{text}</v></c>'


class Plan:
    """The sheets, in the order in which their values depend on each other."""

    def __init__(self):
        self._scenarios()
        self._assumptions()
        self._regions()
        self._revenue()
        self._costs()
        self._debt_and_cash()
        self._summary()

    def _scenarios(self):
        sheet = self.scenarios = Sheet("Scenarios", hidden=True)
        for column, number in zip("BCD", (1, 2, 3)):
            sheet.put(column, 1, number, style=YEAR)
        for row, label, rates in ((2, "Volume growth", (0.01, 0.04, 0.07)),
                                  (3, "Price inflation", (0.03, 0.02, 0.015))):
            sheet.put("A", row, label)
            for column, rate in zip("BCD", rates):
                sheet.put(column, row, rate, style=PERCENT)
        sheet.put("A", 6, "Rating", style=HEADING)
        sheet.put("B", 6, "Interest rate", style=HEADING)
        ratings = (("AAA", 0.03), ("AA", 0.034), ("A", 0.041), ("BBB", 0.052), ("BB", 0.075))
        for row, (rating, rate) in enumerate(ratings, 7):
            sheet.line(row, rating, rate, style=PERCENT)

    def _assumptions(self):
        sheet = self.assumptions = Sheet("Assumptions")
        sheet.put("B", 1, "Value", style=HEADING)
        sheet.put("C", 1, "Note", style=HEADING)
        self.growth, self.inflation, self.wage_rise, self.tax = 0.04, 0.02, 0.03, 0.25
        self.interest = 0.052 + 0.005
        self.loan, self.term, self.opening_cash, self.days = 2000, 5, 250, 45
        self.machines = 1600
        sheet.line(2, "First day", serial(2025, 1, 1), style=DATE)
        sheet.line(3, "Scenario", 2)
        sheet.put("C", 3, "1 low, 2 base, 3 high")
        sheet.line(4, "Volume growth", self.growth, "INDEX(Scenarios!B2:D2,Scenario)", PERCENT)
        sheet.line(5, "Price inflation", self.inflation,
                   "INDEX(Scenarios!B3:D3,MATCH(Scenario,Scenarios!B1:D1,0))", PERCENT)
        sheet.line(6, "Wage rise", self.wage_rise, style=PERCENT)
        sheet.line(7, "Tax rate", self.tax, style=PERCENT)
        sheet.line(8, "Credit rating", "BBB")
        sheet.line(9, "Interest rate", self.interest, "VLOOKUP(B8,Ratings,2,FALSE)+0.5%", PERCENT)
        sheet.put("C", 9, "rating plus the bank's margin")
        sheet.line(10, "Loan", self.loan, style=WHOLE)
        sheet.line(11, "Loan term", self.term)
        sheet.put("C", 11, "years")
        sheet.line(12, "Opening cash", self.opening_cash, style=WHOLE)
        sheet.line(13, "Collection days", self.days)
        sheet.line(14, "Machines", self.machines, style=WHOLE)
        sheet.put("C", 14, "bought in the first year")

    def _regions(self):
        self.regions, self.widgets, self.gadgets = [], [0] * 5, [0] * 5
        for name, widgets, gadgets, pace in (("North", 420, 150, 1), ("Centre", 380, 120, 1),
                                             ("South", 300, 130, 1.5)):
            sheet = Sheet(name, headings="Revenue!{c}1")
            rate = "Growth" if pace == 1 else f"Growth*{pace}"
            for row, label, start, total in ((2, "Widgets", widgets, self.widgets),
                                             (3, "Gadgets", gadgets, self.gadgets)):
                values = [start]
                for _ in YEARS[1:]:
                    values.append(values[-1] * (1 + self.growth * pace))
                sheet.across(row, label, values, f"{{p}}{row}*(1+{rate})", first="", shared=True)
                for n, value in enumerate(values):
                    total[n] += value
            self.regions.append(sheet)

    def _revenue(self):
        sheet = self.revenue = Sheet("Revenue")
        sheet.across(1, None, YEARS, "{p}1+1", first="YEAR(Assumptions!$B$2)", style=YEAR,
                     shared=True)
        self.contracts = [40, 44, 0, 30, 36]
        prices = {5: [2.4], 6: [6.5], 7: [12]}
        for series in prices.values():
            for _ in YEARS[1:]:
                series.append(series[-1] * (1 + self.inflation))
        self.products = [[units * price for units, price in zip(units, prices[row])]
                         for row, units in ((5, self.widgets), (6, self.gadgets),
                                            (7, self.contracts))]
        self.turnover = [a + b + c for a, b, c in zip(*self.products)]
        sheet.across(2, "Widgets sold", self.widgets, "SUM(North:South!{c}2)")
        sheet.across(3, "Gadgets sold", self.gadgets, "SUM(North:South!{c}3)")
        sheet.across(4, "Service contracts", self.contracts)
        for row, label in ((5, "Widget price"), (6, "Gadget price"), (7, "Contract fee")):
            sheet.across(row, label, prices[row], f"{{p}}{row}*(1+Inflation)", first="",
                         style=DECIMAL, shared=True)
        sheet.across(8, "Widget revenue", self.products[0], "{c}2*WidgetPrice")
        sheet.across(9, "Gadget revenue", self.products[1], "{c}3*{c}6", shared=True)
        sheet.across(10, "Service revenue", self.products[2], "{c}4*{c}7", shared=True)
        sheet.across(11, "Total revenue", self.turnover, "SUM({c}8:{c}10)", shared=True)

    def _costs(self):
        sheet = self.costs = Sheet("Costs", headings="Revenue!{c}1")
        materials = [w * 0.38 + g * 0.45 for w, g in zip(*self.products[:2])]
        wages, rent, service = [1700], [240] * 5, [310, 320, 330, 340, 350]
        for _ in YEARS[1:]:
            wages.append(wages[-1] * (1 + self.wage_rise))
        marketing = [t * 0.06 if self.growth > 0.03 else t * 0.04 for t in self.turnover]
        table = [materials, wages, rent, marketing, service]
        self.total_costs = [sum(column) for column in zip(*table)]
        self.per_contract = [divide(s, c) for s, c in zip(service, self.contracts)]
        fixed = [w + r + s for w, r, s in zip(wages, rent, service)]
        sheet.put("G", 1, "Kind", style=HEADING)
        sheet.across(2, "Materials", materials, "Revenue!{c}8*0.38+Revenue!{c}9*0.45")
        sheet.across(3, "Wages", wages, "{p}3*(1+WageRise)", first="", shared=True)
        sheet.across(4, "Rent", rent, "{p}4", first="", shared=True)
        sheet.across(5, "Marketing", marketing,
                     "IF(Growth>3%,Revenue!{c}11*6%,Revenue!{c}11*4%)")
        sheet.across(6, "Service team", service)
        for row, kind in ((2, "variable"), (3, "fixed"), (4, "fixed"), (5, "variable"),
                          (6, "fixed")):
            sheet.put("G", row, kind)
        sheet.across(7, "Total costs", self.total_costs, "SUM({c}2:{c}6)", shared=True)
        sheet.across(8, "Service cost per contract", self.per_contract, "{c}6/Revenue!{c}4",
                     style=DECIMAL)
        sheet.across(9, "Fixed costs", fixed, 'SUMIF($G$2:$G$6,"fixed",{c}2:{c}6)', shared=True)

    def _debt_and_cash(self):
        debt = self.debt = Sheet("Debt", headings="Revenue!{c}1")
        cash = self.cash_flow = Sheet("Cash flow", headings="Revenue!{c}1")
        repayment = [self.loan / self.term if n < self.term else 0 for n in range(5)]
        opening, self.loan_left = [], []
        for paid in repayment:
            opening.append(self.loan_left[-1] if self.loan_left else self.loan)
            self.loan_left.append(opening[-1] - paid)
        self.interest_paid = [balance * self.interest for balance in opening]
        self.profit = [t - c for t, c in zip(self.turnover, self.total_costs)]
        self.tax_paid = [-max(0, p + -i) * self.tax
                         for p, i in zip(self.profit, self.interest_paid)]
        before = [0] + self.turnover[:-1]
        receivables = [-(t - b) * self.days / 365 for t, b in zip(self.turnover, before)]
        loan_flow = [(self.loan - self.machines if n == 0 else 0) - paid
                     for n, paid in enumerate(repayment)]
        net = [p + -i + t + r + l for p, i, t, r, l in zip(
            self.profit, self.interest_paid, self.tax_paid, receivables, loan_flow)]
        self.cash = []
        for flow in net:
            self.cash.append((self.cash[-1] if self.cash else self.opening_cash) + flow)
        reserve = [cost * count * 0.1 for cost, count in zip(self.per_contract, self.contracts)]
        available = [p + t - r for p, t, r in zip(self.profit, self.tax_paid, reserve)]
        self.coverage = [divide(a, paid + interest) for a, paid, interest in zip(
            available, repayment, self.interest_paid)]

        debt.across(2, "Opening balance", opening, "{p}4", first="Assumptions!$B$10")
        debt.across(3, "Repayment", repayment, "IF({c}$1-YEAR(Assumptions!$B$2)<Assumptions!$B$11,"
                    "Assumptions!$B$10/Assumptions!$B$11,0)", shared=True)
        debt.across(4, "Closing balance", self.loan_left, "{c}2-{c}3", shared=True)
        debt.across(5, "Interest", self.interest_paid, "{c}2*InterestRate", shared=True)
        debt.across(6, "Debt coverage", self.coverage, "'Cash flow'!{c}10/({c}3+{c}5)",
                    style=DECIMAL)
        debt.line(7, "Lowest coverage", lowest(self.coverage), "MIN(B6:F6)", DECIMAL)

        cash.across(2, "Operating profit", self.profit, "Revenue!{c}11-Costs!{c}7")
        cash.across(3, "Interest", [-i for i in self.interest_paid], "-Debt!{c}5")
        cash.across(4, "Tax", self.tax_paid, "-MAX(0,{c}2+{c}3)*TaxRate", shared=True)
        cash.across(5, "Receivables", receivables,
                    "-(Revenue!{c}11-Revenue!{p}11)*Assumptions!$B$13/365",
                    first="-Revenue!B11*Assumptions!$B$13/365")
        cash.across(6, "Loan and machines", loan_flow, "-Debt!{c}3",
                    first="Assumptions!B10-Assumptions!B14-Debt!B3")
        cash.across(7, "Net cash flow", net, "SUM({c}2:{c}6)", shared=True)
        cash.across(8, "Closing cash", self.cash, "{p}8+{c}7", first="Assumptions!B12+B7")
        cash.across(9, "Service reserve", reserve, "Costs!{c}8*Revenue!{c}4*10%")
        cash.across(10, "Available for the loan", available, "{c}2+{c}4-{c}9", shared=True)

    def _summary(self):
        sheet = self.summary = Sheet("Summary", headings="Revenue!{c}1")
        margin = [p / t for p, t in zip(self.profit, self.turnover)]
        result = [p - i + t for p, i, t in zip(self.profit, self.interest_paid, self.tax_paid)]
        increase = [None] + [b / a - 1 for a, b in zip(self.turnover, self.turnover[1:])]
        sheet.across(2, "Revenue", self.turnover, "Revenue!{c}11")
        sheet.across(3, "Operating profit", self.profit, "'Cash flow'!{c}2")
        sheet.across(4, "Operating margin", margin, "{c}3/{c}2", style=PERCENT, shared=True)
        sheet.across(5, "Net profit", result, "{c}3-Debt!{c}5+'Cash flow'!{c}4")
        sheet.across(6, "Closing cash", self.cash, "'Cash flow'!{c}8")
        sheet.across(7, "Net debt", [d - c for d, c in zip(self.loan_left, self.cash)],
                     "Debt!{c}4-{c}6")
        sheet.across(8, "Growth of revenue", increase, "{c}2/{p}2-1", style=PERCENT)
        sheet.across(9, "Debt coverage", self.coverage, "Debt!{c}6", style=DECIMAL)
        sheet.across(10, "Covenant",
                     [decide(c, "kept" if c >= 1.2 else "broken") for c in self.coverage],
                     'IF({c}9>=1.2,"kept","broken")', style=GENERAL, shared=True)
        sheet.line(12, "Average margin", sum(margin) / 5, "AVERAGE(B4:F4)", PERCENT)
        sheet.line(13, "Best year", YEARS[result.index(max(result))],
                   "INDEX(B1:F1,MATCH(MAX(B5:F5),B5:F5,0))")
        worst = lowest(self.coverage)
        sheet.line(14, "Lowest debt coverage", worst, "Debt!B7", DECIMAL)
        verdict = decide(worst, "kept" if worst >= 1.2 else "broken")
        sheet.line(15, "Covenant in every year", verdict, 'IF(B14>=1.2,"kept","broken")')
        sheet.line(16, "Approved on", serial(2024, 11, 30),
                   "DATE(YEAR(Assumptions!B2)-1,11,30)", DATE)

    def sheets(self):
        return [self.summary, self.assumptions, *self.regions, self.revenue, self.costs, self.debt,
                self.cash_flow, self.scenarios]


def write(path):
    with BookWriter(path, level=9) as book:
        for sheet in Plan().sheets():
            sheet.write(book)
        book.name("Scenario", "Assumptions!$B$3")
        book.name("Growth", "Assumptions!$B$4")
        book.name("Inflation", "Assumptions!$B$5")
        book.name("TaxRate", "Assumptions!$B$7")
        book.name("InterestRate", "Assumptions!$B$9")
        book.name("Ratings", "Scenarios!$A$7:$B$11")
        book.name("WageRise", "Assumptions!$B$6", sheet="Costs")
        # Relative to A1, as names are stored: the price of the year in whose column it is used.
        book.name("WidgetPrice", "Revenue!A$5")
