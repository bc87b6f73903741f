#!/usr/bin/env python3
"""Generator of the golden hash values in table_hash_test.cpp: the table-key
folds, the hash unit's lookup3 final step and bob_hash written from their
description alone, apart from the program's code. Its output is pasted into
the test, which holds only constants."""

M = 0xFFFFFFFF
D = 0xDEADBEF7
D32 = 0xDEADBEF3


def rot(x, k):
    return ((x << k) | (x >> (32 - k))) & M


def final(a, b, c):
    c ^= b; c = (c - rot(b, 14)) & M
    a ^= c; a = (a - rot(c, 11)) & M
    b ^= a; b = (b - rot(a, 25)) & M
    c ^= b; c = (c - rot(b, 16)) & M
    a ^= c; a = (a - rot(c, 4)) & M
    b ^= a; b = (b - rot(a, 14)) & M
    c ^= b; c = (c - rot(b, 24)) & M
    return c


def mix(a, b, c):
    a = (a - c) & M; a ^= rot(c, 4); c = (c + b) & M
    b = (b - a) & M; b ^= rot(a, 6); a = (a + c) & M
    c = (c - b) & M; c ^= rot(b, 8); b = (b + a) & M
    a = (a - c) & M; a ^= rot(c, 16); c = (c + b) & M
    b = (b - a) & M; b ^= rot(a, 19); a = (a + c) & M
    c = (c - b) & M; c ^= rot(b, 4); b = (b + a) & M
    return a, b, c


def w(k, i):
    return int.from_bytes(k[4 * i:4 * i + 4], 'big')


def h(k, n):
    return int.from_bytes(k[n:n + 2], 'big')


def s(*xs):
    return sum(xs) & M


FOLDS = {
    32: lambda k: (s(w(k, 0), D32), D32, s(w(k, 0), D32)),
    40: lambda k: (s(w(k, 0), D), s(k[4], D), D),
    48: lambda k: (s(w(k, 0), D), s(h(k, 4), D), D),
    64: lambda k: (s(w(k, 0), D), s(w(k, 1), D), D),
    72: lambda k: (s(w(k, 0), D), s(w(k, 1), D), s(k[8], D)),
    80: lambda k: (s(w(k, 0), D), s(w(k, 1), D), s(h(k, 8), D)),
    120: lambda k: (s(w(k, 0), h(k, 12), D), s(w(k, 1), k[14], D), s(w(k, 2), D)),
    144: lambda k: (s(w(k, 0), w(k, 3), D), s(w(k, 1), h(k, 16), D), s(w(k, 2) & 0xFFFF, D)),
    152: lambda k: (s(w(k, 0), w(k, 3), D), s(w(k, 1), h(k, 16), D), s(w(k, 2), k[18], D)),
    160: lambda k: (s(w(k, 0), w(k, 3), D), s(w(k, 1), w(k, 4), D), s(w(k, 2), D)),
    192: lambda k: (s(w(k, 0), w(k, 3), D), s(w(k, 1), w(k, 4), D), s(w(k, 2), w(k, 5), D)),
    256: lambda k: (s(w(k, 0), w(k, 3), w(k, 5), D), s(w(k, 1), w(k, 4), w(k, 6), D),
                    s(w(k, 2), w(k, 5), w(k, 7), D)),
    272: lambda k: (s(w(k, 0), w(k, 3), w(k, 6), D), s(w(k, 1), w(k, 4), w(k, 7), D),
                    s(w(k, 2), w(k, 5), h(k, 32), D)),
    320: lambda k: (s(w(k, 0), w(k, 3), w(k, 5), w(k, 8), D), s(w(k, 1), w(k, 4), w(k, 6), w(k, 9), D),
                    s(w(k, 2), w(k, 5), w(k, 7), D)),
    392: lambda k: (s(w(k, 0), w(k, 3), w(k, 5), w(k, 8), w(k, 11), D),
                    s(w(k, 1), w(k, 4), w(k, 6), w(k, 9), k[48], D),
                    s(w(k, 2), w(k, 5), w(k, 7), w(k, 10), D)),
}


def bob(k, length, seed):
    words = length // 4
    a = b = c = (0xDEADBEEF + words * 4 + seed) & M
    i = 0
    while words > 3:
        a = s(a, w(k, i)); b = s(b, w(k, i + 1)); c = s(c, w(k, i + 2))
        a, b, c = mix(a, b, c)
        words -= 3
        i += 3
    if words == 0:
        return c
    if words == 3:
        c = s(c, w(k, i + 2))
    if words >= 2:
        b = s(b, w(k, i + 1))
    a = s(a, w(k, i))
    return final(a, b, c)


# The two keys of the test: counting bytes, and all ones (carries everywhere).
COUNTING = bytes((0x10 + 7 * i) & 0xFF for i in range(52))
ONES = bytes([0xFF] * 52)

if __name__ == '__main__':
    for bits, fold in FOLDS.items():
        print(f'{{{bits}, 0x{final(*fold(COUNTING)):08X}, 0x{final(*fold(ONES)):08X}}},')
    print('unit', f'0x{final(1, 2, 3):08X}', f'0x{final(0, 0, 0):08X}', f'0x{final(M, M, M):08X}')
    for length, seed in ((0, 5), (4, 0), (8, 1), (12, 2), (16, 4), (49, 0x1234)):
        print(f'{{{length}, 0x{seed:X}, 0x{bob(COUNTING, length, seed):08X}}},')
