"""Workbooks made by script: the shipped example and the books of the benchmarks."""
