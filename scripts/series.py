# SPDX-License-Identifier: MIT
"""Series that make_constants.py and make_tables.py sum, in integers: `one` is the unit that stands for 1."""


def inverse_series(n, sign, one):
    """1/n + sign/(3 n^3) + 1/(5 n^5) + ..., within one unit a term: artanh(1/n), or of sign -1 arctan(1/n)."""
    term = one // n
    total, k = term, 1
    while term:
        term //= n * n
        k += 2
        total += term // k if k % 4 == 1 or sign > 0 else -(term // k)
    return total


def pi_in(one):
    """pi by Machin's formula."""
    return 16 * inverse_series(5, -1, one) - 4 * inverse_series(239, -1, one)
