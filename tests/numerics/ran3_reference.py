#!/usr/bin/env python3
"""Reference values for the generator tests, computed apart from the C++ code.

Knuth's subtractive generator in the published "ran3" form (modulus 1e9,
MSEED 161803398, 55 slots, indices starting at 0 and 31), written from the
algorithm's description. Run it once; its output is pasted into
random_test.cpp.
"""

MBIG = 1000000000
MSEED = 161803398


class Ran3:
    def __init__(self):
        self.ma = [0] * 56
        self.inext = 0
        self.inextp = 0
        self.iff = 0

    def draw(self, idum):
        """Returns (value, new idum)."""
        if idum < 0 or self.iff == 0:
            self.iff = 1
            mj = abs(MSEED - abs(idum)) % MBIG
            self.ma[55] = mj
            mk = 1
            for i in range(1, 55):
                ii = (21 * i) % 55
                self.ma[ii] = mk
                mk = mj - mk
                if mk < 0:
                    mk += MBIG
                mj = self.ma[ii]
            for _ in range(4):
                for i in range(1, 56):
                    self.ma[i] -= self.ma[1 + (i + 30) % 55]
                    if self.ma[i] < 0:
                        self.ma[i] += MBIG
            self.inext = 0
            self.inextp = 31
            idum = 1
        self.inext = 1 if self.inext == 55 else self.inext + 1
        self.inextp = 1 if self.inextp == 55 else self.inextp + 1
        mj = self.ma[self.inext] - self.ma[self.inextp]
        if mj < 0:
            mj += MBIG
        self.ma[self.inext] = mj
        return mj * 1e-9, idum


def first_draws(seed, count):
    gen = Ran3()
    idum = seed
    out = []
    for _ in range(count):
        value, idum = gen.draw(idum)
        out.append(value)
    return out


def draw_number(seed, index):
    """The index-th draw (0-based) after seeding."""
    return first_draws(seed, index + 1)[index]


if __name__ == "__main__":
    for seed in (-1, -12345, -161803398, 1):
        print(seed, ", ".join(repr(v) for v in first_draws(seed, 6)))
    # Far into the stream: the 55-slot table has wrapped many times.
    print("-12345 draw 9999:", repr(draw_number(-12345, 9999)))
