#!/usr/bin/env python3
"""Writes a shipped example or a book for the benchmarks; the same arguments, the same book."""

import argparse
import sys

from books import benchmark, linked, plan


def parse(arguments):
    parser = argparse.ArgumentParser(description=__doc__)
    kinds = parser.add_subparsers(dest="kind", required=True)

    def kind(name, text, what="the .xlsx file to write"):
        sub = kinds.add_parser(name, help=text, description=text)
        sub.add_argument("path", help=what)
        return sub

    kind("plan", "the shipped example, examples/workbooks/plan.xlsx")
    kind("linked", "the shipped books that refer to each other, examples/workbooks/linked",
         "the folder to write them to")
    chain = kind("chain", "a running total")
    chain.add_argument("--rows", type=int, default=1_000_000)
    chain.add_argument("--shared", action="store_true", help="as one shared formula")
    fan = kind("fan", "SUMs over columns of constants")
    fan.add_argument("--sums", type=int, default=100)
    fan.add_argument("--cells", type=int, default=1_000_000)
    grid = kind("grid", "each cell is its left plus its upper neighbour")
    grid.add_argument("--rows", type=int, default=1000)
    grid.add_argument("--columns", type=int, default=1000)
    model = kind("model", "sheets of mixed formulas that build on each other")
    model.add_argument("--sheets", type=int, default=20)
    model.add_argument("--rows", type=int, default=2000, help="rows per sheet, five formulas each")
    return parser.parse_args(arguments)


def main(arguments):
    options = vars(parse(arguments))
    kind = options.pop("kind")
    if kind in ("plan", "linked"):
        {"plan": plan, "linked": linked}[kind].write(options["path"])
    else:
        getattr(benchmark, kind)(**options)


if __name__ == "__main__":
    main(sys.argv[1:])
