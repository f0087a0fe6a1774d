#!/usr/bin/env python3
"""Reference calculator for golden tests of morvcore.

An independent, deliberately plain implementation of the within-sample numbers
of morvcore: the molecular distances between the haplotypes of a sample and the
diversity indices and theta estimators of each sample. It is a test oracle:
clarity over speed, standard library only, every formula written out once.

Usage:
    reference.py PROJECT.mvp [--allowed 0.05] [--method 0] [--gamma 0]
                             [--weights DEL TS TV]
    reference.py --self-check

It reads the simple sample formats of the shipped examples: haplotypic lines
"id count [data]" (data may come from a [[HaplotypeDefinition]] list or from
an earlier line with the same id), and genotypic pairs of lines
"id count gamete1" / "gamete2". EXTERN files are not read.

Genotypic data are analysed as the gene copies that the two lines give, with
identical gametes of a sample merged into one haplotype. For unknown gametic
phase that is only one possible phasing; the program prints pairwise values
for such data only where its own rules allow it.

Every value is printed with repr(), i.e. with all the digits of the double.
Known limits: ln Gamma comes from math.lgamma, so Theta(k) limits may differ
from the program's in the last ~10 digits; pooled project-wide matrices (the
ones AMOVA uses) are not produced.
"""

import argparse
import math
import sys

DNA, RFLP, MICROSAT, STANDARD, FREQUENCY = range(5)
TYPE_NAMES = {"DNA": DNA, "RFLP": RFLP, "MICROSAT": MICROSAT, "STANDARD": STANDARD,
              "FREQUENCY": FREQUENCY}
NOT_ESTIMABLE = 3.4028234663852886e+38  # the program's mark for an infinite value


# ---------------------------------------------------------------------------
# Reading a project
# ---------------------------------------------------------------------------

class Sample:
    """One sample: a list of [label, count, alleles] entries.

    For DNA and RFLP `alleles` is the sequence string (one character a site);
    for the other types it is a list of allele tokens, one per locus."""

    def __init__(self, name):
        self.name = name
        self.entries = []

    @property
    def n(self):
        return sum(e[1] for e in self.entries)


class Project:
    def __init__(self):
        self.data_type = STANDARD
        self.genotypic = 0
        self.missing = "?"
        self.relative = False
        self.definitions = {}   # id -> alleles, project-wide
        self.samples = []


def strip_comment(line):
    return line.split("#", 1)[0].strip()


def value_of(line):
    """Text behind the first '=', without quotes and blanks."""
    v = line.split("=", 1)[1].strip()
    if len(v) >= 2 and v[0] in "\"'" and v[-1] == v[0]:
        v = v[1:-1]
    return v


def make_alleles(project, tokens):
    if project.data_type in (DNA, RFLP):
        return "".join(tokens).upper()   # separators and blanks are removed
    return list(tokens)


def read_block(lines, pos):
    """Lines from `pos` up to the closing brace; returns (lines, next position)."""
    out = []
    while pos < len(lines):
        text = strip_comment(lines[pos])
        pos += 1
        if "}" in text:
            text = text.split("}", 1)[0].strip()
            if text:
                out.append(text)
            break
        if text:
            out.append(text)
    return out, pos


def parse_project(path):
    with open(path) as f:
        lines = f.read().splitlines()
    p = Project()
    sample = None
    size = None
    pos = 0
    while pos < len(lines):
        text = strip_comment(lines[pos])
        pos += 1
        key = text.split("=", 1)[0].strip().lower() if "=" in text else ""
        if key == "datatype":
            p.data_type = TYPE_NAMES[value_of(text).upper()]
        elif key == "genotypicdata":
            p.genotypic = int(value_of(text))
        elif key == "missingdata":
            p.missing = value_of(text)
        elif key == "frequency":
            p.relative = value_of(text).upper() == "REL"
        elif key == "hapllist":
            block, pos = read_block(lines, pos)
            for row in block:
                tok = row.split()
                p.definitions[tok[0]] = make_alleles(p, tok[1:])
        elif key == "samplename":
            sample = Sample(value_of(text))
            size = None
        elif key == "samplesize":
            size = float(value_of(text))
        elif key == "sampledata":
            block, pos = read_block(lines, pos)
            read_sample_lines(p, sample, size, block)
            p.samples.append(sample)
    return p


def count_of(project, token, size):
    value = float(token)
    if project.relative:
        return int(size * value + 0.5)
    return int(value)


def read_sample_lines(p, sample, size, block):
    if p.genotypic:
        merged = {}   # identical gametes of a sample become one haplotype
        for first, second in zip(block[0::2], block[1::2]):
            tok = first.split()
            count = count_of(p, tok[1], size)
            for gamete in (tok[2:], second.split()):
                alleles = make_alleles(p, gamete)
                key = "".join(alleles) if isinstance(alleles, str) else " ".join(alleles)
                if key not in merged:
                    merged[key] = ["[%s]" % key, 0, alleles]
                    sample.entries.append(merged[key])
                merged[key][1] += count
    else:
        for row in block:
            tok = row.split()
            if len(tok) > 2:
                p.definitions.setdefault(tok[0], make_alleles(p, tok[2:]))
            alleles = p.definitions.get(tok[0], "")
            count = count_of(p, tok[1], size)
            if count:
                sample.entries.append([tok[0], count, alleles])
    # a haplotype made only of missing data leaves the sample
    sample.entries = [e for e in sample.entries
                      if not e[2] or any(a != p.missing for a in e[2])]


# ---------------------------------------------------------------------------
# Nucleotide classes
# ---------------------------------------------------------------------------

TRANSITION, TRANSVERSION, DELETION, UNSURE = 1, 2, 3, 4
BASES = "ACGT"
# a base (or R/Y) against an ambiguity code whose bases all differ from it by transversions
TRANSVERSION_CODES = {frozenset(p) for p in ("CR", "TR", "AY", "GY", "RY")}
# codes sharing no base, but differing both by transition and transversion
UNSURE_PAIRS = {frozenset(p) for p in ("AB", "AK", "AS", "CD", "CK", "CW", "GH", "GM", "GW",
                                       "TM", "TS", "TV", "KM", "SW", "01")}
GAP_PARTNERS = set("ABCDGHKMNRSTVWY01")


def nucleotide_class(a, b):
    """Kind of difference between two different characters a and b:
    1 transition (A-G, C-T), 2 transversion, 3 deletion ('-' against a base or
    code), 4 difference of unsure kind, 0 anything else (compatible codes,
    missing data)."""
    pair = frozenset((a, b))
    if a in BASES and b in BASES:
        return TRANSITION if pair in (frozenset("AG"), frozenset("CT")) else TRANSVERSION
    if pair in TRANSVERSION_CODES:
        return TRANSVERSION
    if "-" in pair and (pair - {"-"}) <= GAP_PARTNERS and len(pair) == 2:
        return DELETION
    if pair in UNSURE_PAIRS:
        return UNSURE
    return 0


def rflp_class(a, b, missing):
    """RFLP site pair: 0 equal or missing, 2 deletion, 1 restriction-site change."""
    if a == b or a == missing or b == missing:
        return 0
    if a == "-" or b == "-":
        return 2
    return 1


# ---------------------------------------------------------------------------
# Sites and loci of a sample
# ---------------------------------------------------------------------------

class Weights:
    def __init__(self, deletion=1.0, transition=1.0, transversion=1.0):
        self.deletion, self.ts, self.tv = deletion, transition, transversion


def reference_sequence(entries, missing):
    """The arbitrary reference used to classify sites: at each site the first
    character, from the second haplotype on, that is neither missing nor a gap;
    when there is none, the last character read (the first haplotype's own
    character when the sample has one haplotype)."""
    ref = list(entries[0][2])
    for site in range(len(ref)):
        last = None
        for e in entries[1:]:
            last = e[2][site]
            if last != missing and last != "-":
                break
        if last is not None:
            ref[site] = last
    return ref


def classify_sites(p, sample, allowed, w):
    """Usable sites and the counts of the molecular report (DNA and RFLP).

    A site is unusable when its reference character is missing, when its share
    of missing data exceeds `allowed` (a share equal to it is fine), or when
    the reference is a gap and no deletion was seen there."""
    entries, n, miss = sample.entries, sample.n, p.missing
    ref = reference_sequence(entries, miss)
    res = dict(transitions=0, transversions=0, substitutions=0, indels=0, ts_sites=0,
               tv_sites=0, s_sites=0, indel_sites=0, poly_sites=0, observed_sites=len(ref))
    usable = []
    for site, r in enumerate(ref):
        if r == miss:
            usable.append(False)
            continue
        missing_count, ts, tv_bases, dele, other = 0, False, set(), False, False
        for e in entries:
            ch = e[2][site]
            if ch == miss:
                missing_count += e[1]
            elif ch != r:
                c = (nucleotide_class(r, ch) if p.data_type == DNA
                     else {1: TRANSITION, 2: DELETION}.get(rflp_class(r, ch, miss), 0))
                ts |= c == TRANSITION
                dele |= c == DELETION
                other |= c == UNSURE
                if c == TRANSVERSION:
                    tv_bases.add(ch)
        share = missing_count / n if n else 0.0
        ok = share <= allowed
        if ok and r == "-" and not dele:
            ok = False
            res["observed_sites"] -= 1
        usable.append(ok)
        if not ok:
            continue
        ts_weight = w.ts if p.data_type == DNA else 1.0   # RFLP site changes always count
        poly = s_site = ts_counted = False
        if dele and w.deletion > 0:
            res["indels"] += 1
            res["indel_sites"] += 1
            poly = True
        if ts and ts_weight > 0:
            res["transitions"] += 1
            res["ts_sites"] += 1
            res["substitutions"] += 1
            poly = s_site = ts_counted = True
        if tv_bases and w.tv > 0:
            res["transversions"] += 1
            res["tv_sites"] += 1
            res["substitutions"] += 1
            if len(tv_bases) >= 2 and w.ts > 0:   # two different transversions
                res["transversions"] += 1
                res["substitutions"] += 1
            poly = s_site = True
        if other and not ts_counted and not (tv_bases and w.tv > 0):
            res["substitutions"] += 1
            poly = s_site = True
        res["poly_sites"] += poly
        res["s_sites"] += s_site
    res["usable_sites"] = sum(usable)
    return usable, res


RFLP_NAMES = {"transitions": "site_changes", "ts_sites": "change_sites"}


def locus_usable(p, sample, allowed):
    """Microsatellite and standard data: a locus is usable when its share of
    missing gene copies does not exceed `allowed`; polymorphic when two
    different non-missing alleles occur."""
    nloci = len(sample.entries[0][2])
    usable, poly = [], 0
    for locus in range(nloci):
        missing = sum(e[1] for e in sample.entries if e[2][locus] == p.missing)
        ok = (missing / sample.n if sample.n else 0.0) <= allowed
        usable.append(ok)
        alleles = {e[2][locus] for e in sample.entries if e[2][locus] != p.missing}
        poly += ok and len(alleles) >= 2
    return usable, poly


def nucleotide_frequencies(sample):
    """Shares of C, T, A, G over all characters of all haplotypes, weighted by
    count, normalised so that the four sum to 1."""
    counts = dict.fromkeys("CTAG", 0)
    for _, c, seq in sample.entries:
        for ch in seq:
            if ch in counts:
                counts[ch] += c
    total = sum(counts.values())
    return {b: (counts[b] / total if total else 0.0) for b in "CTAG"}


# ---------------------------------------------------------------------------
# DNA distances. Each takes two sequences and returns (distance, variance);
# a pair that the method cannot correct raises DistanceError.
# ---------------------------------------------------------------------------

class DistanceError(Exception):
    pass


def sites(s1, s2, usable):
    return [(a, b) for a, b, u in zip(s1, s2, usable) if u]


def weighted_walk(pairs, miss, w):
    """Walk of the pairwise-difference methods: sums of weighted transitions,
    transversions and deletions, and L, the weighted number of sites.
    Equal characters add 1 to L unless missing; a weighted class adds its weight
    to its sum and to L (1 to L only, when the weight is 0); an unsure
    difference takes the smaller of the transition and transversion weights."""
    wts = wtv = wdel = L = 0.0
    for a, b in pairs:
        if a == b:
            L += a != miss
            continue
        c = nucleotide_class(a, b)
        if c in (TRANSITION, TRANSVERSION, DELETION):
            weight = {TRANSITION: w.ts, TRANSVERSION: w.tv, DELETION: w.deletion}[c]
            if weight > 0:
                if c == TRANSITION:
                    wts += weight
                elif c == TRANSVERSION:
                    wtv += weight
                else:
                    wdel += weight
                L += weight
            else:
                L += 1
        elif c == UNSURE:
            if w.ts > 0 and w.tv > 0:
                if w.ts <= w.tv:
                    wts += w.ts
                    L += w.ts
                else:
                    wtv += w.tv
                    L += w.tv
            else:
                L += w.ts if w.ts > 0 else (w.tv if w.tv > 0 else 1)
        else:
            L += 1
    return wts, wtv, wdel, L


def d_pairwise(pairs, ctx):
    """d = w, the weighted number of differences; var = p (1 - p) L, p = w / L."""
    wts, wtv, wdel, L = weighted_walk(pairs, ctx["miss"], ctx["w"])
    d = wts + wtv + wdel
    if L <= 0:
        return d, 0.0
    p = d / L
    return d, (1 - p) * p * L


def d_proportion(pairs, ctx):
    """d = (wts + wtv + wdel) / L; var = d (1 - d) / L."""
    wts, wtv, wdel, L = weighted_walk(pairs, ctx["miss"], ctx["w"])
    if L <= 0:
        return 0.0, 0.0
    d = (wts + wtv + wdel) / L
    return d, (1 - d) * d / L


def corrected_counts(pairs, ctx, unsure_counts):
    """Counts of the corrected methods: compared sites L (equal characters that
    are neither missing nor gaps, and every different pair), transitions and
    transversions counted when their weight is positive."""
    w, miss = ctx["w"], ctx["miss"]
    nts = ntv = nunsure = L = 0
    for a, b in pairs:
        if a == b:
            L += a != miss and a != "-"
            continue
        c = nucleotide_class(a, b)
        L += 1
        if c == TRANSITION and w.ts > 0:
            nts += 1
        elif c == TRANSVERSION and w.tv > 0:
            ntv += 1
        elif c == UNSURE and unsure_counts and w.ts > 0 and w.tv > 0:
            nunsure += 1
    return nts, ntv, nunsure, L


def d_jukes_cantor(pairs, ctx):
    """p = n / L, w = 1 - 4p/3.  d = -3/4 ln w,  var = p (1 - p) / (L w^2);
    with gamma shape a: d = 3/4 a (w^(-1/a) - 1), var = p (1 - p) w^(-2(1/a + 1)) / L."""
    nts, ntv, nuns, L = corrected_counts(pairs, ctx, True)
    if L < 1:
        return 0.0, 0.0
    p = (nts + ntv + nuns) / L
    if p >= 0.75:
        raise DistanceError("sequences too divergent for Jukes and Cantor correction")
    w, a = 1 - 4 * p / 3, ctx["gamma"]
    if a == 0:
        return -0.75 * math.log(w), (1 - p) * p / (L * w * w)
    return 0.75 * a * (w ** (-1 / a) - 1), (1 - p) * p * w ** (-2 * (1 / a + 1)) / L


def d_kimura(pairs, ctx):
    """P = transitions / L, Q = transversions / L, w1 = 1 - 2P - Q, w2 = 1 - 2Q.
    d = 1/2 ln(1/w1) + 1/4 ln(1/w2); with c1 = 1/w1, c2 = 1/w2, c3 = (c1 + c2)/2:
    var = (c1^2 P + c3^2 Q - (c1 P + c3 Q)^2) / L.  With gamma shape a:
    d = a/2 (w1^(-1/a) + 1/2 w2^(-1/a) - 3/2), c1 = w1^(-1/a-1), c2 = w2^(-1/a-1)."""
    nts, ntv, _, L = corrected_counts(pairs, ctx, False)
    if L == 0:
        return 0.0, 0.0
    P, Q = nts / L, ntv / L
    w1, w2 = 1 - 2 * P - Q, 1 - 2 * Q
    if w1 <= 0 or w2 <= 0:
        raise DistanceError("sequences too divergent for Kimura-2P correction")
    a = ctx["gamma"]
    if a == 0:
        c1, c2 = 1 / w1, 1 / w2
        d = 0.5 * math.log(c1) + 0.25 * math.log(c2)
    else:
        c1, c2 = w1 ** (-1 / a - 1), w2 ** (-1 / a - 1)
        d = (a / 2) * (w1 ** (-1 / a) + 0.5 * w2 ** (-1 / a) - 1.5)
    c3 = (c1 + c2) / 2
    return d, (c1 * c1 * P + c3 * c3 * Q - (c1 * P + c3 * Q) ** 2) / L


def d_tajima_nei(pairs, ctx):
    """x_ij = share of sites where the pair shows bases i and j; g_i the base
    frequencies of the sample; h = 1/2 sum x_ij^2 / (g_i g_j);
    b = (p^2 / h + 1 - sum g_i^2) / 2;  d = -b ln(1 - p/b),
    var = p (1 - p) / (L (1 - p/b)^2)."""
    w, miss, g = ctx["w"], ctx["miss"], ctx["freqs"]
    pair_count, n, L = {}, 0, 0
    for a, b in pairs:
        if a == b:
            L += a != miss and a != "-"
        elif a in BASES and b in BASES:
            key = frozenset((a, b))
            pair_count[key] = pair_count.get(key, 0) + 1
            L += 1
            n += (w.ts if nucleotide_class(a, b) == TRANSITION else w.tv) > 0
    if n == 0:
        return 0.0, 0.0
    if min(g.values()) <= 0:
        raise DistanceError("a nucleotide is not found, impossible to apply Tajima-Nei correction")
    h = 0.0
    for key, count in pair_count.items():
        i, j = sorted(key)
        x = count / L
        h += x * x / (g[i] * g[j])
    h *= 0.5
    if h == 0:
        raise DistanceError("a nucleotide is not found, impossible to apply Tajima-Nei correction")
    p = n / L
    b = (p * p / h + 1 - sum(v * v for v in g.values())) / 2
    if p / b >= 1:
        raise DistanceError("sequences too divergent for Tajima-Nei correction")
    return -b * math.log(1 - p / b), (1 - p) * p / (L * (1 - p / b) ** 2)


def d_tamura(pairs, ctx):
    """g = G+C content, h = 2 g (1 - g); w1 = 1 - P/h - Q, w2 = 1 - 2Q;
    d = -h ln w1 - (1 - h)/2 ln w2; c1 = 1/w1, c2 = 1/w2, c3 = h (c1 - c2) + c2;
    var = (c1^2 P + c3^2 Q - (c1 P + c3 Q)^2) / L.  Sites showing no kind of
    difference count only when neither character is missing or a gap."""
    w, miss = ctx["w"], ctx["miss"]
    nts = ntv = L = 0
    for a, b in pairs:
        if a == b:
            L += a != miss and a != "-"
            continue
        c = nucleotide_class(a, b)
        if c == TRANSITION:
            nts += w.ts > 0
            L += 1
        elif c == TRANSVERSION:
            ntv += w.tv > 0
            L += 1
        elif c == UNSURE:
            L += 1
        elif not ({a, b} & {miss, "-"}):
            L += 1
    if L == 0:
        return 0.0, 0.0
    P, Q = nts / L, ntv / L
    gc = ctx["freqs"]["C"] + ctx["freqs"]["G"]
    h = 2 * gc * (1 - gc)
    if h <= 0:
        raise DistanceError("nucleotide composition too unbalanced for Tamura correction")
    w1, w2 = 1 - P / h - Q, 1 - 2 * Q
    if w1 <= 0 or w2 <= 0:
        raise DistanceError("attempting to compute log(0)")
    d = -h * math.log(w1) - (1 - h) * 0.5 * math.log(w2)
    c1, c2 = 1 / w1, 1 / w2
    c3 = h * (c1 - c2) + c2
    return d, (c1 * c1 * P + c3 * c3 * Q - (c1 * P + c3 * Q) ** 2) / L


def d_tamura_nei(pairs, ctx):
    """Purines R = A+G, pyrimidines Y = C+T; k1 = 2 gA gG / gR, k2 = 2 gC gT / gY;
    P1 = A-G transitions / L, P2 = C-T transitions / L, Q = transversions / L;
    w1 = 1 - P1/k1 - Q/(2 gR), w2 = 1 - P2/k2 - Q/(2 gY), w3 = 1 - Q/(2 gR gY);
    K = 2 gR gY - k1 gY - k2 gR.  d = -k1 ln w1 - k2 ln w2 - K ln w3, or with
    gamma shape a: d = a (k1 w1^e + k2 w2^e + K w3^e - 2 (gR gY + gC gT + gA gG)),
    e = -1/a.  Variance by the delta method (coefficients in the code)."""
    w, miss, g = ctx["w"], ctx["miss"], ctx["freqs"]
    nag = nct = ntv = L = 0
    for a, b in pairs:
        if a == b:
            L += a != miss and a != "-"
        elif a in BASES and b in BASES:
            L += 1
            c = nucleotide_class(a, b)
            if c == TRANSITION and w.ts > 0:
                if frozenset((a, b)) == frozenset("AG"):
                    nag += 1
                else:
                    nct += 1
            elif c == TRANSVERSION and w.tv > 0:
                ntv += 1
    if nag + nct + ntv == 0 or L == 0:
        return 0.0, 0.0
    gA, gC, gG, gT = g["A"], g["C"], g["G"], g["T"]
    if min(gA, gC, gG, gT) == 0:
        raise DistanceError("nucleotide composition too unbalanced for Tamura-Nei correction")
    gR, gY = gA + gG, gC + gT
    k1, k2 = 2 * gA * gG / gR, 2 * gC * gT / gY
    P1, P2, Q = nag / L, nct / L, ntv / L
    w1 = 1 - P1 / k1 - Q / (2 * gR)
    w2 = 1 - P2 / k2 - Q / (2 * gY)
    w3 = 1 - Q / (2 * gR * gY)
    if min(w1, w2, w3) <= 0:
        raise DistanceError("nucleotide composition too unbalanced for Tamura-Nei correction")
    K = 2 * gR * gY - k1 * gY - k2 * gR
    a = ctx["gamma"]
    if a == 0:
        d = -k1 * math.log(w1) - k2 * math.log(w2) - K * math.log(w3)
        t1, t2 = 2 * gA * gG * gR, 2 * gC * gT * gY
        u1 = t1 - gR * gR * P1 - gA * gG * Q
        u2 = t2 - gY * gY * P2 - gC * gT * Q
        c1, c2 = t1 / u1, t2 / u2
        c3 = (((gA * gA + gG * gG) * gY * gY + (gC * gC + gT * gT) * gR * gR)
              / (2 * gR * gR * gY * gY - gR * gY * Q)
              + 2 * gC * gC * gT * gT / (u2 * gY) + 2 * gA * gA * gG * gG / (u1 * gR))
    else:
        e, f = -1 / a, -(1 / a + 1)
        d = a * (k1 * w1 ** e + k2 * w2 ** e + K * w3 ** e - 2 * (gR * gY + gC * gT + gA * gG))
        if d < 1.1754943508222875e-38 or d > 3.4028234663852886e+38:
            raise DistanceError("nucleotide composition too unbalanced for Tamura-Nei correction")
        c1, c2 = w1 ** f, w2 ** f
        c3 = ((k2 / (2 * gY)) * w2 ** f + (k1 / (2 * gR)) * w1 ** f
              + ((gC * gC + gT * gT) / (2 * gY * gY) + (gA * gA + gG * gG) / (2 * gR * gR)) * w3 ** f)
    s = c3 * Q + c2 * P2 + c1 * P1
    return d, (c3 * c3 * Q + c2 * c2 * P2 + c1 * c1 * P1 - s * s) / L


DNA_METHODS = [(0, "Pairwise difference", d_pairwise), (1, "Jukes and Cantor", d_jukes_cantor),
               (2, "Kimura 2P", d_kimura), (3, "Proportion of difference", d_proportion),
               (4, "Tajima and Nei", d_tajima_nei), (5, "Tamura", d_tamura),
               (6, "Tamura and Nei", d_tamura_nei)]


# ---------------------------------------------------------------------------
# RFLP, microsatellite and standard distances
# ---------------------------------------------------------------------------

def d_rflp(pairs, ctx, proportion):
    """n = restriction-site changes (+ deletions when weighted), L = sites.
    Differences: d = n, var = L (1 - n/L)(n/L).  Proportion: d = n/L, var = d (1 - d)/L."""
    n = L = 0
    for a, b in pairs:
        L += 1
        c = rflp_class(a, b, ctx["miss"])
        n += c == 1 or (c == 2 and ctx["w"].deletion > 0)
    if L == 0:
        return 0.0, 0.0
    if proportion:
        d = n / L
        return d, (1 - d) * d / L
    return float(n), L * (1 - n / L) * (n / L)


def d_loci(h1, h2, usable, miss, microsat, squared):
    """Microsatellites and standard data, over usable loci where neither allele
    is missing: the number of different alleles (sizes compared as numbers for
    microsatellites, names as texts otherwise), or the sum of squared
    differences in size (microsatellites only)."""
    total = 0.0
    for a, b, u in zip(h1, h2, usable):
        if u and a != miss and b != miss:
            if not microsat:
                total += a != b
                continue
            diff = int(a) - int(b)
            total += diff * diff if squared else (diff != 0)
    return total


# ---------------------------------------------------------------------------
# Diversity indices and theta estimators
# ---------------------------------------------------------------------------

def gene_diversity(counts):
    """H = n/(n-1) (1 - sum p_i^2), at most 1; 1 when every copy differs.
    s.d.^2 = 2/(n(n-1)) (2(n-2)(S3 - S2^2) + S2 - S2^2), S2 = sum p^2, S3 = sum p^3."""
    n, k = sum(counts), len(counts)
    s2 = sum((c / n) ** 2 for c in counts)
    s3 = sum((c / n) ** 3 for c in counts)
    if k == n:
        div = 1.0
    elif n <= 1:
        div = 0.0
    else:
        div = min(1.0, (n / (n - 1)) * (1 - s2))
    sd = 0.0 if n <= 1 else math.sqrt((2 / (n * (n - 1))) * (2 * (n - 2) * (s3 - s2 * s2) + s2 - s2 * s2))
    return s2, div, 1 - div, sd


def pairwise_stats(pi_sum, n, L):
    """pi = sum_{i>j} c_i c_j d_ij / (n(n-1)/2);
    s.d.(pi)^2 = (3(n^2+n) pi + 2(n^2+n+3) pi^2) / (11 n^2 - 7n + 6);
    diversity per site a = pi / L,
    s.d.(a)^2 = (n+1) a / (3 L (n-1)) + 2 (n^2+n+3) a^2 / (9 (n^2-n))."""
    if n <= 1 or L == 0:
        return 0.0, 0.0, 0.0, 0.0
    pi = pi_sum / (n * (n - 1) / 2)
    v = (3 * (n * n + n) * pi + 2 * (n * n + n + 3) * pi * pi) / (11 * n * n - 7 * n + 6)
    a = pi / L
    va = ((n + 1) * a) / (3 * L * (n - 1)) + (2 * (n * n + n + 3) * a * a) / (9 * (n * n - n))
    return pi, math.sqrt(v) if v > 0 else 0.0, a, math.sqrt(va) if va > 0 else 0.0


def theta_hom(H, sd_div, k, n):
    """Solve t (1 + 2 (t+1) / ((t+2)(t+3))) = 1/H - 1 by regula falsi;
    s.d. = V (t+2)^2 (t+3)^2 / ((10(t+2) + (t+4)(t+2)(t+3) + 4)(t+1) H^2),
    V being the s.d. of the gene diversity."""
    if k == n:
        return NOT_ESTIMABLE, None
    if H == 1:
        return 0.0, 0.0
    if H <= 0:
        return NOT_ESTIMABLE, NOT_ESTIMABLE

    def f(t):
        return t * (1 + 2 * (t + 1) / ((t + 2) * (t + 3)))
    y = 1 / H - 1
    a, b = (y - 1 if y > 1 else 0.001), y + 1
    x, residual, steps = a, math.inf, 0
    while steps < 1000 and abs(residual) > 1e-07:
        x = b - (b - a) * (f(b) - y) / (f(b) - f(a))
        residual = f(x) - y
        if residual <= 0:
            a = x
        else:
            b = x
        steps += 1
    t = x
    sd = sd_div * (t + 2) ** 2 * (t + 3) ** 2 / ((10 * (t + 2) + (t + 4) * (t + 2) * (t + 3) + 4) * (t + 1) * H * H)
    return t, sd


def theta_s(S, n):
    """theta = S / a1, a1 = sum_{i<n} 1/i, a2 = sum_{i<n} 1/i^2;
    s.d.^2 = (S^2 a2 + S a1^2) / ((a1^2 + a2) a1^2)."""
    a1 = sum(1 / i for i in range(1, n))
    a2 = sum(1 / (i * i) for i in range(1, n))
    if a1 <= 0:
        return 0.0, 0.0
    return S / a1, math.sqrt((S * S * a2 + S * a1 * a1) / ((a1 * a1 + a2) * a1 * a1))


def theta_pi(pi, n):
    """theta = pi; s.d.^2 = 2 (n^2+n+3) / (9 n (n-1)) pi^2 + (n+1) / (3 (n-1)) pi."""
    if n < 2:
        return 0.0, 0.0
    return pi, math.sqrt((2 * (n * n + n + 3) / (9 * n * (n - 1))) * pi * pi + ((n + 1) / (3 * (n - 1))) * pi)


def expected_k(t, n):
    """Ewens: E[k] = sum_{i=0}^{n-1} t / (t + i)."""
    return 1.0 if t <= 0 else sum(t / (t + i) for i in range(n))


def b_table(n, m):
    """B(i, j) = |s(i, j)| j! / i!, s the Stirling numbers of the first kind:
    B(i, i) = 1, B(i, 1) = 1/i, B(i, j) = ((i-1) B(i-1, j) + j B(i-1, j-1)) / i."""
    B = [[0.0] * (m + 1) for _ in range(n + 1)]
    for i in range(1, n + 1):
        for j in range(1, min(i, m) + 1):
            if i == j:
                B[i][j] = 1.0
            elif j == 1:
                B[i][j] = 1.0 / i
            else:
                B[i][j] = ((i - 1) * B[i - 1][j] + j * B[i - 1][j - 1]) / i
    return B


def theta_k(n, k):
    """Ewens' estimator: the t with E[k] = k, by bisection; 95 % limits where
    P(K < k | t) = 0.025 (upper) and P(K <= k | t) = 0.975 (lower), with
    P(K = j | t) = t^j |s(n, j)| Gamma(t) / Gamma(t + n)."""
    if k < 2:
        return 0.0, 0.0, 0.0
    a, b = 0.1, 10.0
    while expected_k(a, n) > k:
        a *= 0.1
    while expected_k(b, n) < k:
        b *= 10
    m = (a + b) / 2
    while b - a > 1e-07:
        m = (a + b) / 2
        if expected_k(m, n) <= k:
            a = m
        else:
            b = m
    t0 = m
    if not (n < 5000 and k < 1000):
        return t0, 0.0, 100000000.0
    B = b_table(n, k + 10)
    lnfact = [math.lgamma(i + 1) for i in range(n + 1)]

    def pk(t, j):
        if t > 10000 or j >= n:
            return 0.0
        if t <= 0:
            return 1.0 if j == 1 else 0.0
        return math.exp(j * math.log(t) + lnfact[n] + math.lgamma(t) - math.lgamma(n + t) - lnfact[j]) * B[n][j]

    def below(t):
        if t > 10000:
            return 0.0
        if t <= 0:
            return 1.0
        s = sum(math.exp(j * math.log(t) - lnfact[j]) * B[n][j] for j in range(1, k))
        return min(1.0, max(0.0, s * math.exp(math.lgamma(t) + lnfact[n] - math.lgamma(n + t))))

    def limit(F, level):
        lo, hi = t0, t0
        while F(lo) < level:
            lo /= 3
        while F(hi) > level:
            hi *= 3
        mid = (lo + hi) / 2
        while abs(hi - lo) > 1e-07:
            mid = (lo + hi) / 2
            if F(mid) <= level:
                hi = mid
            else:
                lo = mid
        return mid
    high = limit(below, 0.025)
    low = limit(lambda t: below(t) + pk(t, k), 0.975)
    return t0, low, high


# ---------------------------------------------------------------------------
# One sample
# ---------------------------------------------------------------------------

def distance_matrix(p, sample, usable, method, ctx):
    """Distances between the haplotypes of a sample, i > j, with the index
    pairs; returns [(i, j, d, var)] or raises DistanceError."""
    out = []
    es = sample.entries
    for i in range(len(es)):
        for j in range(i):
            if p.data_type == DNA:
                d, v = dict((m, f) for m, _, f in DNA_METHODS)[method](sites(es[i][2], es[j][2], usable), ctx)
            elif p.data_type == RFLP:
                d, v = d_rflp(sites(es[i][2], es[j][2], usable), ctx, method == 1)
            else:
                microsat = p.data_type == MICROSAT
                d, v = d_loci(es[i][2], es[j][2], usable, p.missing, microsat, microsat and method == 1), 0.0
            out.append((i, j, d, v))
    return out


def analyse(p, sample, args, show):
    """Computes and prints (through `show`) all numbers of one sample; returns
    them as a dict for the self-check."""
    r = {}
    counts = [e[1] for e in sample.entries]
    n, k = sample.n, len(counts)
    r["n"], r["k"] = n, k
    r["sum_sq_freq"], r["gene_diversity"], r["gene_homozygosity"], r["sd_gene_diversity"] = gene_diversity(counts)
    w = Weights(*args.weights)
    if p.data_type == FREQUENCY:
        ctx, usable, L, S = None, [], 0, None
    elif p.data_type in (DNA, RFLP):
        usable, site_info = classify_sites(p, sample, args.allowed, w)
        if p.data_type == RFLP:   # one kind of change: restriction-site gain or loss
            site_info = {RFLP_NAMES.get(key, key): v for key, v in site_info.items()
                         if key not in ("transversions", "tv_sites")}
        r.update(site_info)
        L, S = site_info["usable_sites"], site_info["s_sites"]
        ctx = dict(w=w, miss=p.missing, gamma=args.gamma)
        if p.data_type == DNA:
            ctx["freqs"] = nucleotide_frequencies(sample)
            r["composition_CTAG"] = [ctx["freqs"][b] for b in "CTAG"]
    else:
        usable, r["poly_loci"] = locus_usable(p, sample, args.allowed)
        L, S = sum(usable), None
        r["usable_loci"] = L
        ctx = dict(w=w, miss=p.missing, gamma=0.0)
    for key, value in r.items():
        show(key, value)

    if p.data_type != FREQUENCY:
        methods = ([(m, name) for m, name, _ in DNA_METHODS] if p.data_type == DNA else
                   [(0, "Pairwise difference"), (1, "Proportion of difference")] if p.data_type == RFLP else
                   [(0, "No. of different alleles"), (1, "Sum of squared size difference")]
                   if p.data_type == MICROSAT else [(0, "No. of different alleles")])
        for m, name in methods:
            show("distances", "method %d (%s)%s" % (m, name, "" if not ctx["gamma"] else ", gamma a=%r" % ctx["gamma"]))
            try:
                for i, j, d, v in distance_matrix(p, sample, usable, m, ctx):
                    show("  %s %s" % (sample.entries[i][0], sample.entries[j][0]), "d=%r var=%r" % (d, v))
            except DistanceError as err:
                show("  failed", str(err))
        # mean pairwise differences: microsatellite and standard data always use method 0
        method = args.method if p.data_type in (DNA, RFLP) else 0
        try:
            pi_sum = 0.0
            for i, j, d, _ in distance_matrix(p, sample, usable, method, ctx):
                pi_sum += counts[i] * counts[j] * d
            if p.data_type in (DNA, RFLP) and method != 0:
                pi_sum *= L   # per-site distances back to differences per sequence
            (r["mean_pairwise_diff"], r["sd_pairwise_diff"],
             r["avg_gene_diversity"], r["sd_avg_gene_diversity"]) = pairwise_stats(pi_sum, n, L)
            for key in ("mean_pairwise_diff", "sd_pairwise_diff", "avg_gene_diversity", "sd_avg_gene_diversity"):
                show(key, r[key])
        except DistanceError as err:
            show("mean_pairwise_diff", "not computed: %s" % err)

    r["theta_Hom"], r["sd_theta_Hom"] = theta_hom(r["gene_homozygosity"], r["sd_gene_diversity"], k, n)
    show("theta_Hom", r["theta_Hom"])
    show("sd_theta_Hom", r["sd_theta_Hom"])
    if p.data_type in (DNA, RFLP):
        r["theta_S"], r["sd_theta_S"] = theta_s(S, n)
        for key in ("theta_S", "sd_theta_S"):
            show(key, r[key])
        if "mean_pairwise_diff" in r:
            r["theta_Pi"], r["sd_theta_Pi"] = theta_pi(r["mean_pairwise_diff"], n)
            for key in ("theta_Pi", "sd_theta_Pi"):
                show(key, r[key])
    if p.data_type == MICROSAT:
        pass   # Theta(Hom) is the only estimator for microsatellites
    elif k == n:
        show("theta_k", "not computed: all gene copies are different")
    else:
        r["theta_k"], r["theta_k_low"], r["theta_k_high"] = theta_k(n, k)
        for key in ("theta_k", "theta_k_low", "theta_k_high"):
            show(key, r[key])
    return r


def report(path, args):
    p = parse_project(path)
    print("project: %s" % path)
    print("settings: allowed missing %r, distance method %d, gamma %r, weights (del, ts, tv) %r"
          % (args.allowed, args.method, args.gamma, tuple(args.weights)))
    for sample in p.samples:
        print("\n== sample %s" % sample.name)
        analyse(p, sample, args, lambda key, value: print("%s: %r" % (key, value) if not isinstance(value, str)
                                                          else "%s: %s" % (key, value)))


# ---------------------------------------------------------------------------
# Self-check on a toy alignment worked out by hand
# ---------------------------------------------------------------------------
#
#   H1 (2 copies)  A A C C G G T T A C
#   H2 (1 copy)    A A C C A G T T A ?
#   H3 (1 copy)    A A C A G G - T G C
#   site           1 2 3 4 5 6 7 8 9 10
#
# n = 4 gene copies, k = 3 haplotypes, allowed missing share 0.05.
# Site 10: one missing copy in four, share 0.25 > 0.05, so it is not used:
#   9 usable sites. Reference (from H2 on, skipping '?'): AACCAGTTAC.
#   Site 4 C/A transversion, site 5 A/G transition, site 7 T/- indel, site 9 A/G
#   transition: 2 transitions, 1 transversion, 3 substitutions, 1 indel,
#   4 polymorphic sites, S = 3 sites with substitutions.
# Base counts (weighted, all 10 sites): A 13, C 10, G 8, T 7 of 38.
# Pairwise differences (all weights 1): d(H2,H1) = 1 (site 5),
#   d(H3,H1) = 3 (sites 4, 7, 9), d(H3,H2) = 4 (sites 4, 5, 7, 9).
#   pi = (2*1*1 + 2*1*3 + 1*1*4) / (4*3/2) = 12/6 = 2.
#   s.d.(pi) = sqrt((3*20*2 + 2*23*4) / (11*16 - 28 + 6)) = sqrt(304/154) = 1.40500...
#   nucleotide diversity = 2/9 = 0.22222...
#   s.d. = sqrt(5*(2/9)/(3*9*3) + 2*23*(2/9)^2/(9*12)) = sqrt(10/729 + 184/8748) = 0.186416...
# Gene diversity: p = 1/2, 1/4, 1/4; S2 = 3/8; H = 4/3 * 5/8 = 5/6.
#   S3 = 1/8 + 2/64 = 5/32; s.d. = sqrt(1/6 * (2*2*(5/32 - 9/64) + 3/8 - 9/64))
#        = sqrt(1/6 * (1/16 + 15/64)) = sqrt(19/384) = 0.222439...
# Theta(S): a1 = 1 + 1/2 + 1/3 = 11/6, theta = 3 / (11/6) = 18/11 = 1.636363...;
#   a2 = 49/36, s.d. = sqrt((9*49/36 + 3*121/36) / ((170/36)*(121/36)))
#        = sqrt(28944/20570) = 1.186211...
# Theta(Pi) = 2; s.d. = sqrt(2*23/(9*12) * 4 + 5/9 * 2) = sqrt(76/27) = 1.677741...
# Jukes-Cantor d(H2,H1): 9 compared sites, p = 1/9, w = 23/27, d = 3/4 ln(27/23) = 0.120257...
#   d(H3,H1): the gap counts as a compared site, p = 2/9, d = 3/4 ln(27/19) = 0.263548...
# Kimura 2P d(H3,H1): P = Q = 1/9, w1 = 2/3, w2 = 7/9, d = 1/2 ln(3/2) + 1/4 ln(9/7) = 0.265561...
# Proportion d(H3,H1) = 3/9 = 1/3, variance = (2/3)(1/3)/9 = 2/81.
# Theta(Hom): homozygosity 1/6, y = 5; t (1 + 2(t+1)/((t+2)(t+3))) = 5 gives t = 4.042 (by hand,
#   f(4.042) = 4.99997); its s.d. with V = 0.222439: 0.222439 * 6.042^2 * 7.042^2
#   / ((60.42 + 8.042*6.042*7.042 + 4) * 5.042 / 36) = 402.7 / 56.95 = 7.07.
# Theta(k): t/(t+1) + t/(t+2) + t/(t+3) = 2 gives t = 3.7664 (f(3.766) = 1.999926, slope 0.1697).
# B table: B(n, k) n!/k! are the unsigned Stirling numbers: |s(5, 2)| = 50, |s(6, 3)| = 225.

def self_check():
    p = Project()
    p.data_type = DNA
    toy = Sample("toy")
    toy.entries = [["H1", 2, "AACCGGTTAC"], ["H2", 1, "AACCAGTTA?"], ["H3", 1, "AACAGG-TGC"]]
    args = argparse.Namespace(allowed=0.05, method=0, gamma=0.0, weights=[1.0, 1.0, 1.0])
    r = analyse(p, toy, args, lambda key, value: None)
    w = Weights()
    usable, _ = classify_sites(p, toy, 0.05, w)
    ctx = dict(w=w, miss="?", gamma=0.0, freqs=nucleotide_frequencies(toy))
    s = [e[2] for e in toy.entries]

    def dist(f, i, j):
        return f(sites(s[i], s[j], usable), ctx)[0]
    B = b_table(6, 6)
    checks = [
        ("usable sites", r["usable_sites"], 9), ("S", r["s_sites"], 3), ("polymorphic", r["poly_sites"], 4),
        ("transitions", r["transitions"], 2), ("transversions", r["transversions"], 1),
        ("indels", r["indels"], 1), ("composition C", r["composition_CTAG"][0], 10 / 38),
        ("d12", dist(d_pairwise, 1, 0), 1), ("d13", dist(d_pairwise, 2, 0), 3), ("d23", dist(d_pairwise, 2, 1), 4),
        ("pi", r["mean_pairwise_diff"], 2.0), ("sd pi", r["sd_pairwise_diff"], math.sqrt(304 / 154)),
        ("nucleotide diversity", r["avg_gene_diversity"], 2 / 9),
        ("sd nucleotide diversity", r["sd_avg_gene_diversity"], math.sqrt(10 / 729 + 184 / 8748)),
        ("gene diversity", r["gene_diversity"], 5 / 6),
        ("sd gene diversity", r["sd_gene_diversity"], math.sqrt(19 / 384)),
        ("theta S", r["theta_S"], 18 / 11), ("sd theta S", r["sd_theta_S"], math.sqrt(28944 / 20570)),
        ("theta Pi", r["theta_Pi"], 2.0), ("sd theta Pi", r["sd_theta_Pi"], math.sqrt(76 / 27)),
        ("JC d12", dist(d_jukes_cantor, 1, 0), 0.75 * math.log(27 / 23)),
        ("JC d13", dist(d_jukes_cantor, 2, 0), 0.75 * math.log(27 / 19)),
        ("K2P d13", dist(d_kimura, 2, 0), 0.5 * math.log(1.5) + 0.25 * math.log(9 / 7)),
        ("proportion d13", dist(d_proportion, 2, 0), 1 / 3),
        ("B(5,2) 5!/2!", B[5][2] * 120 / 2, 50), ("B(6,3) 6!/3!", B[6][3] * 720 / 6, 225),
    ]
    rough = [("theta Hom", r["theta_Hom"], 4.042, 1e-3), ("sd theta Hom", r["sd_theta_Hom"], 7.07, 1e-2),
             ("theta k", r["theta_k"], 3.7664, 1e-3)]
    failed = 0
    for name, got, want in checks:
        if abs(got - want) > 1e-12 * max(1.0, abs(want)):
            print("FAILED %s: got %r, expected %r" % (name, got, want))
            failed += 1
    for name, got, want, tol in rough:
        if abs(got - want) > tol:
            print("FAILED %s: got %r, expected about %r" % (name, got, want))
            failed += 1
    lo, hi = r["theta_k_low"], r["theta_k_high"]
    if not 0 < lo < r["theta_k"] < hi:
        print("FAILED theta k interval: %r, %r" % (lo, hi))
        failed += 1
    print("self-check: %d of %d checks passed" % (len(checks) + len(rough) + 1 - failed, len(checks) + len(rough) + 1))
    return failed == 0


def main():
    ap = argparse.ArgumentParser(description=__doc__.split("\n\n")[0])
    ap.add_argument("project", nargs="?")
    ap.add_argument("--allowed", type=float, default=0.05, help="allowed share of missing data")
    ap.add_argument("--method", type=int, default=0, help="distance method of the mean pairwise differences")
    ap.add_argument("--gamma", type=float, default=0.0, help="gamma shape a, 0 for none")
    ap.add_argument("--weights", type=float, nargs=3, default=[1.0, 1.0, 1.0], metavar=("DEL", "TS", "TV"))
    ap.add_argument("--self-check", action="store_true")
    args = ap.parse_args()
    if args.self_check or not args.project:
        return 0 if self_check() else 1
    report(args.project, args)
    return 0


if __name__ == "__main__":
    sys.exit(main())
