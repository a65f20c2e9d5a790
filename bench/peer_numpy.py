#!/usr/bin/python3
"""The peer of bench/ft_pipeline_bench.cpp (its 16K aspirin and 2048 x 1024 HSQC): the same
work written with NumPy only.

  aspirin-1h: 8K complex FID, exponential weighting (0.3 Hz), filled to 16K, FFT, phase.
  cyclosporin-hsqc: f2 weighted, filled to 2048, FFT and phase per row; f1 States pairs
  weighted, filled to 1024, FFT per column for both f2 halves (real and imaginary), as the
  program keeps the hypercomplex half.

Reading the files is not timed. Run: /usr/bin/python3 bench/peer_numpy.py [testdata folder];
the minimum of many runs is printed in milliseconds. Needs Debian's python3-numpy; it is not
run by the tests.
"""
import os
import re
import sys
import time

import numpy as np


def parameters(path):
    values = {}
    with open(path, encoding="latin-1") as f:
        for line in f:
            m = re.match(r"##\$(\w+)= *(.*)", line)
            if m:
                values[m.group(1)] = m.group(2).strip()
    return values


def read_fid(folder, shape_rows):
    p = parameters(os.path.join(folder, "acqus"))
    dtype = np.dtype(">i4" if p["BYTORDA"] == "1" else "<i4")
    if p["DTYPA"] == "2":
        dtype = np.dtype(">f8" if p["BYTORDA"] == "1" else "<f8")
    td = int(p["TD"])
    name = "fid" if shape_rows == 1 else "ser"
    raw = np.fromfile(os.path.join(folder, name), dtype=dtype).astype(np.float64)
    stride = -(-td // 256) * 256 if shape_rows > 1 else td
    raw = raw[: stride * shape_rows].reshape(shape_rows, stride)[:, :td]
    return (raw[:, 0::2] + 1j * raw[:, 1::2]).astype(np.complex64), p


def timed(work, repeats):
    best = float("inf")
    for _ in range(repeats):
        start = time.perf_counter()
        work()
        best = min(best, time.perf_counter() - start)
    return best * 1e3


def aspirin(root):
    fid, p = read_fid(os.path.join(root, "bruker", "aspirin-1h", "1"), 1)
    fid = fid[0]
    sw = float(p["SW_h"])
    n = 16384

    def work():
        t = np.arange(fid.size) / sw
        x = fid * np.exp(-np.pi * 0.3 * t).astype(np.float32)
        x = np.concatenate([x, np.zeros(n - x.size, np.complex64)])
        s = np.fft.fftshift(np.fft.fft(x))
        k = np.arange(n) / n
        return s * np.exp(1j * (0.5 + 1.0 * k)).astype(np.complex64)

    return timed(work, 300)


def hsqc(root):
    folder = os.path.join(root, "bruker", "cyclosporin_hsqc", "cyclosporin_hsqc", "3")
    f1 = parameters(os.path.join(folder, "acqu2s"))
    rows = int(f1["TD"])
    fid, _ = read_fid(folder, rows)
    n2, n1 = 2048, 1024

    def bell(n):
        return (np.sin(np.pi / 2 + np.pi / 2 * np.arange(n) / n) ** 2).astype(np.float32)

    def work():
        x = fid * bell(fid.shape[1])
        x = np.concatenate([x, np.zeros((rows, n2 - x.shape[1]), np.complex64)], axis=1)
        x = np.fft.fftshift(np.fft.fft(x, axis=1), axes=1)
        x *= np.exp(1j * (0.3 + 0.7 * np.arange(n2) / n2)).astype(np.complex64)
        # States pairs: the even rows are the real, the odd rows the imaginary parts along f1.
        w = bell(rows // 2)[:, None]
        halves = []
        for part in (x.real, x.imag):
            y = (part[0::2] + 1j * part[1::2]) * w
            y = np.concatenate([y, np.zeros((n1 - y.shape[0], n2), np.complex64)], axis=0)
            halves.append(np.fft.fftshift(np.fft.fft(y, axis=0), axes=0))
        return halves

    return timed(work, 20)


def main():
    root = sys.argv[1] if len(sys.argv) > 1 else os.environ.get("ZOLT_TESTDATA_DIR", "build/testdata")
    sys.stdout.reconfigure(line_buffering=True)
    print(f"aspirin 8K -> 16K, exponential, FFT, phase: {aspirin(root):.3f} ms")
    print(f"cyclosporin HSQC to 2048 x 1024:            {hsqc(root):.3f} ms")


if __name__ == "__main__":
    main()
