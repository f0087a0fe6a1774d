"""Writes distance_reference_table.txt, read by distances_reference_test.cpp:
the distance and standard deviation of every pair of the two test alignments
(distances_dna.mvp, distances_codes.mvp) by tools/reference/reference.py, for
each method, missing-data level, gamma shape and set of weights.

    python3 tests/within/data/distance_reference_table.py

Each case is a line "case SAMPLE ALLOWED GAMMA DELETION TRANSITION
TRANSVERSION METHOD", then one line "DISTANCE SD" per pair (i > j, row by
row), with every digit of the double.
"""
import math
import os
import sys

HERE = os.path.dirname(os.path.abspath(__file__))
sys.path.insert(0, os.path.join(HERE, "..", "..", "..", "tools", "reference"))
import reference as R  # noqa: E402


def run(path, allowed, gamma, weights, methods):
    p = R.parse_project(path)
    s = p.samples[0]
    w = R.Weights(*weights)
    usable, _ = R.classify_sites(p, s, allowed, w)
    ctx = dict(w=w, miss=p.missing, gamma=gamma, freqs=R.nucleotide_frequencies(s))
    out = []
    for m in methods:
        out.append("case %s %r %r %r %r %r %d" % (s.name, allowed, gamma, *weights, m))
        for i, j, d, v in R.distance_matrix(p, s, usable, m, ctx):
            out.append("%r %r" % (d, math.sqrt(v) if v > 0 else 0.0))
    return out

rows = []
dna = os.path.join(HERE, 'distances_dna.mvp')
codes = os.path.join(HERE, 'distances_codes.mvp')
for a in (0.05, 0.5):
    rows += run(dna, a, 0.0, (1.0, 1.0, 1.0), range(7))
for g in (0.5, 2.0):
    rows += run(dna, 0.5, g, (1.0, 1.0, 1.0), (1, 2, 6))
for wt in ((0.0, 1.0, 2.0), (1.0, 0.0, 1.0), (0.5, 1.5, 0.3), (1.0, 1.0, 0.0)):
    rows += run(dna, 0.5, 0.0, wt, range(7))
for wt in ((1.0, 1.0, 1.0), (1.0, 2.0, 3.0), (0.5, 0.25, 2.0), (0.0, 0.0, 0.0)):
    rows += run(codes, 0.05, 0.0, wt, range(7))
rows += run(codes, 0.05, 0.7, (1.0, 1.0, 1.0), (1, 2, 6))
with open(os.path.join(HERE, "distance_reference_table.txt"), "w") as f:
    f.write("# Written by distance_reference_table.py from tools/reference/reference.py\n")
    f.write("\n".join(rows) + "\n")
