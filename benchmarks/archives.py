"""Measures what the Python package does with whole archives, and prints a table.

    archives.py FOLDER

The archive and the catalogues are made in FOLDER unless they are there: 200 recordings of 1,000
epochs of 2,000 points, and a synthetic catalogue of 10 million epochs. Libraries as for reading.py.
"""
import json
import shutil
import sqlite3
import statistics
import subprocess
import sys
import time
from pathlib import Path

import reading  # noqa: F401  sets the paths

FILES, EPOCHS, POINTS, SYNTHETIC = 200, 1000, 2000, 10_000
REPETITIONS = 5


def record(path):
    """A recording of steps of current."""
    from rig import CLAMP, Rig, pulse
    rig = Rig(path)
    for number in range(EPOCHS):
        rig.epoch([pulse(80 * (number % 20) - 400, POINTS)], points=POINTS, interval=50,
                  epochComment=b"step %d" % (number % 20), temperature=31.5, **CLAMP)
    rig.do("ITCCloseFile")


def made_archive(folder):
    archive = folder / "archive"
    if not archive.exists():
        archive.mkdir(parents=True)
        first = archive / "cell000.dat"
        subprocess.run([sys.executable, __file__, "--record", first], check=True,
                       stdout=subprocess.DEVNULL)
        for number in range(1, FILES):
            shutil.copyfile(first, archive / f"cell{number:03}.dat")
    return archive


def made_synthetic(folder, archive):
    """A catalogue of as many files as a large laboratory has, all like the first."""
    import pyarrow as pa
    from corvantis.archive.indexing import read_file
    from corvantis.archive.locations import Root
    from corvantis.archive.store import TABLES, Manifest, Store, _Writer
    from corvantis.archive.transport import from_bytes
    store = Store(folder / "synthetic")
    root = Root(str(archive))
    store.create(root.name)
    if not store.manifest().parts:
        tables = from_bytes(read_file(root.name, next(root.files()), False), len(TABLES))
        writer = _Writer(store.folder / "parts")
        for number in range(SYNTHETIC):
            name = f"day{number // 100:03}/cell{number:05}.dat"
            writer.add({table: rows.set_column(0, rows.schema.field("file"),
                                               pa.repeat(name, len(rows)))
                        for table, rows in zip(TABLES, tables)})
            writer.end_of_file()
        writer.close()
        store._replace(Manifest(root.name, writer.parts, []))
    return store.folder


def naive_index(files, database):
    """A table of epochs by the package's own table, row by row into SQLite."""
    import corvantis
    database.unlink(missing_ok=True)
    with sqlite3.connect(database) as connection:
        connection.execute("CREATE TABLE epochs (file, row)")
        for path in files:
            with corvantis.open(path) as recording:
                connection.executemany("INSERT INTO epochs VALUES (?, ?)", (
                    (path.name, json.dumps(row)) for row in recording.table()))


def means(recording, rows):
    """All samples of a recording."""
    counts = recording.counts()
    return [{"mean": float(counts.mean()), "largest": int(counts.max())}]


def features(recording, rows):
    """What takes a worker about a tenth of a second: each response in units, smoothed."""
    import numpy as np
    kernel = np.ones(21) / 21
    return [{"epoch": epoch.number,
             "largest": float(np.convolve(epoch.response[:, 0], kernel, "valid").max())}
            for epoch in recording.epochs]


def timed(work, clock=time.perf_counter):
    start = clock()
    work()
    return clock() - start


def say(what, value):
    print(f"{what:68} {value}", flush=True)


def indexing(archive, folder):
    from corvantis.archive import index
    from corvantis.archive.indexing import read_file
    from corvantis.archive.locations import Root
    some = sorted(archive.glob("*.dat"))[:20]
    found = list(Root(str(archive)).files())[:20]
    rates = {"naive": [], "with": [], "without": [], "one": [], "two": []}
    for _ in range(REPETITIONS):
        rates["naive"].append(timed(lambda: naive_index(some, folder / "naive.sqlite"),
                                    time.process_time))
        for name, digest in (("with", True), ("without", False)):
            rates[name].append(timed(lambda: [read_file(str(archive), each, digest)
                                              for each in found], time.process_time))
        for name, processes in (("one", 1), ("two", 2)):
            shutil.rmtree(folder / "catalogue", ignore_errors=True)
            rates[name].append(timed(lambda: index(archive, folder / "catalogue",
                                                   processes=processes)))
    for name, files, text in (
            ("naive", 20, "table() row by row into SQLite, by processor time"),
            ("with", 20, "index with SHA-256, by processor time"),
            ("without", 20, "index without, by processor time"),
            ("one", FILES, "the command as a whole, 1 process"),
            ("two", FILES, "the command as a whole, 2 processes")):
        every = sorted(files * EPOCHS / each for each in rates[name])
        say(f"{text} [epochs/s]: median, best",
            f"{statistics.median(every):,.0f}  {every[-1]:,.0f}")
    say("nothing has changed: the same again [s]",
        f"{timed(lambda: index(archive, folder / 'catalogue')):.2f}")


def mapping(archive, folder):
    from corvantis.archive import map as over_files
    size = sum(path.stat().st_size for path in archive.glob("*.dat"))
    for processes in (1, 2):
        best = min(timed(lambda: over_files(means, folder / "catalogue", processes=processes,
                                            columns=[])) for _ in range(REPETITIONS))
        say(f"all samples through map, {processes} processes [MB/s]: best",
            f"{size / best / 1e6:,.0f}")
    pairs = [[timed(lambda: over_files(features, folder / "catalogue", processes=processes,
                                       columns=[])) for processes in (1, 2)]
             for _ in range(REPETITIONS)]
    every = sorted(one / two / 2 for one, two in pairs)
    say("efficiency of 2 processes against 1: each pair",
        "  ".join(f"{each:.2f}" for each in every))


def questions(folder, archive):
    from corvantis.archive import open as open_catalogue
    catalogue = open_catalogue(made_synthetic(folder, archive))
    for text, sql in (
            ("count by stimulus", "SELECT stimulus, count(*), avg(temperature) FROM epochs "
             "WHERE temperature > 30 GROUP BY stimulus"),
            ("epochs of a file", "SELECT epoch, start FROM epochs WHERE file = "
             "'day050/cell05000.dat'"),
            ("files with a stimulus", "SELECT file, count(*) FROM epochs WHERE "
             "stimulus LIKE 'pulse 100 pA%' GROUP BY file")):
        took = [timed(lambda: catalogue.query(sql).fetchall()) for _ in range(REPETITIONS)]
        say(f"10 million epochs: {text} [s]: median", f"{statistics.median(took):.3f}")


def main(folder):
    folder.mkdir(parents=True, exist_ok=True)
    archive = made_archive(folder)
    indexing(archive, folder)
    mapping(archive, folder)
    questions(folder, archive)


if __name__ == "__main__":
    if sys.argv[1:2] == ["--record"]:
        record(sys.argv[2])
    else:
        main(Path(sys.argv[1]))
