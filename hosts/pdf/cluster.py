#!/usr/bin/python3
"""Draws the pages of many PDFs with qzsvggen-pdf, on all cores or on many machines, by Dask.

Each document gets a folder for its pages. The table OUTPUT/results.csv says what became of each
range of pages; what stands in it as drawn is not drawn again by another run. Without --scheduler
the cores of this machine do the work; all machines of another cluster must see the same files
under the same names, and the program among them. It needs python3-distributed.
"""

import argparse
import collections
import csv
import os
import pathlib
import re
import subprocess
import sys

try:
    import distributed
except ImportError:
    sys.exit("cluster.py: Dask is missing; Debian has it in python3-distributed")

COLUMNS = ["document", "first", "last", "of", "status", "pages", "seconds", "bytes", "message"]
FINAL = {"0", "2"}  # of the program: it would say the same again


# ---- What runs on the cluster


def run(*command):
    done = subprocess.run([str(part) for part in command], capture_output=True, text=True,
                          stdin=subprocess.DEVNULL, check=False)
    return done.returncode, done.stdout, "; ".join(done.stderr.splitlines())


def count_pages(program, document):
    """The number of pages, or what hinders: a row of the table."""
    status, told, errors = run(program, document, "--count")
    return int(told) if status == 0 else {"status": status, "message": errors}


def draw(program, options, document, folder, first, last):
    """Draws a range of pages: a row of the table."""
    folder.mkdir(parents=True, exist_ok=True)
    status, told, errors = run(program, document, "-o", folder, "--pages", f"{first}-{last}",
                               "--jobs=1", "--no-index", *options)
    pages, seconds, size = (re.match(r"(\d+) pages?, ([\d.]+) s, (\d+) bytes", told) or
                            re.match("(0?)(0?)(0?)", "000")).groups()
    return {"status": status, "pages": pages, "seconds": seconds, "bytes": size, "message": errors}


# ---- What is to be done


def find_documents(sources):
    """The PDFs that are named, lie in folders, or stand in lists, one a line."""
    for source in map(pathlib.Path, sources):
        if source.is_dir():
            yield from sorted(source.rglob("*.pdf"))
        elif source.suffix.lower() == ".pdf":
            yield source
        else:
            for line in source.read_text().splitlines():
                yield source.parent / line


def folders_of(documents, output):
    """A folder for each document, by their places in the folder that has them all."""
    root = os.path.commonpath([document.parent for document in documents])
    folders = {document: (output / document.relative_to(root)).with_suffix("")
               for document in documents}
    for document in folders:
        if not document.is_file():
            raise SystemExit(f"{document}: there is no such file")
    if len(set(folders.values())) < len(folders):
        raise SystemExit("Two documents differ in the ends of their names only")
    return folders


class Table:
    """The rows of an earlier run that hold, and those that come."""

    def __init__(self, path):
        self.rows = []
        if path.exists():
            with path.open(newline="") as file:  # whose last row may be cut off
                self.rows = [row for row in csv.DictReader(file)
                             if row["status"] in FINAL and row["message"] is not None]
        part = path.with_suffix(".part")
        self.file = part.open("w", newline="", buffering=1)
        self.writer = csv.DictWriter(self.file, COLUMNS)
        self.writer.writeheader()
        self.writer.writerows(self.rows)
        part.replace(path)

    def add(self, row):
        self.rows.append({column: str(row.get(column, "")) for column in COLUMNS})
        self.writer.writerow(self.rows[-1])


class Work:
    """Documents become ranges of pages when it is known how many pages they have."""

    AHEAD = 1000  # tasks that the scheduler knows of

    def __init__(self, client, options, table):
        self.client, self.options, self.table = client, options, table
        self.tasks = collections.deque()  # functions and what they are told, and the row so far
        self.rows = {}                    # of the tasks that are under way, by key

    def run(self, folders):
        drawn, known = set(), {}
        for row in self.table.rows:
            drawn.add((row["document"], row["first"]))
            known[row["document"]] = row["of"]
        for document, folder in folders.items():
            row = {"document": str(document)}
            if known.get(str(document), "") != "":
                self.add_ranges(row, folder, int(known[str(document)]), drawn)
            elif (str(document), "") not in drawn:
                self.tasks.append((row, count_pages, (self.options.program, document)))

        running = distributed.as_completed()
        self.submit(running)
        for future in running:
            row = self.rows.pop(future.key)
            try:
                result = future.result()
            except Exception as wrong:  # whatever happened over there
                result = {"status": "lost", "message": repr(wrong)}
            if isinstance(result, dict):
                self.table.add({**row, **result})
            else:
                self.add_ranges(row, folders[pathlib.Path(row["document"])], result, drawn)
            self.submit(running)
            self.show()

    def add_ranges(self, row, folder, count, drawn):
        size = self.options.pages
        for first in range(1, count + 1, size):
            last = min(first + size - 1, count)
            if (row["document"], str(first)) not in drawn:
                task = (self.options.program, self.options.option, pathlib.Path(row["document"]),
                        folder, first, last)
                self.tasks.append(({**row, "first": first, "last": last, "of": count}, draw, task))

    def submit(self, running):
        while self.tasks and len(self.rows) < self.AHEAD:
            row, function, arguments = self.tasks.popleft()
            future = self.client.submit(function, *arguments, pure=False)
            self.rows[future.key] = row
            running.add(future)

    def show(self):
        if sys.stderr.isatty():
            end = "\r" if self.rows else "\n"
            print(f"{len(self.table.rows)} ranges done, {len(self.rows) + len(self.tasks)} to do",
                  end=end, file=sys.stderr)


def main():
    parser = argparse.ArgumentParser(description=__doc__,
                                     formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("program", type=pathlib.Path, help="qzsvggen-pdf")
    parser.add_argument("source", nargs="+", help="a PDF, a folder, or a list of PDFs, one a line")
    parser.add_argument("-o", "--output", type=pathlib.Path, required=True)
    parser.add_argument("--scheduler", help="the address of a cluster, such as tcp://host:8786")
    parser.add_argument("--workers", type=int, default=len(os.sched_getaffinity(0)),
                        help="processes without --scheduler (the cores)")
    parser.add_argument("--pages", type=int, default=100, help="of a range, at most (100)")
    parser.add_argument("--option", action="append", default=[],
                        help="for qzsvggen-pdf, such as --option=--text=outlines")
    options = parser.parse_args()
    options.program, output = options.program.resolve(), options.output.resolve()

    documents = [path.resolve() for path in find_documents(options.source)]
    if not documents:
        parser.error("there is no PDF")
    folders = folders_of(documents, output)
    output.mkdir(parents=True, exist_ok=True)
    table = Table(output / "results.csv")
    before = len(table.rows)

    local = {"n_workers": options.workers, "threads_per_worker": 1, "dashboard_address": None}
    with distributed.Client(options.scheduler, **({} if options.scheduler else local)) as client:
        Work(client, options, table).run(folders)

    wrong = [row for row in table.rows if row["status"] != "0"]
    total = {column: sum(float(row[column] or 0) for row in table.rows)
             for column in ("pages", "seconds", "bytes")}
    print(f"{len(folders)} documents, {total['pages']:.0f} pages, {total['bytes']:.0f} bytes, "
          f"{total['seconds']:.1f} s of workers; {len(table.rows) - before} ranges in this run, "
          f"{len(wrong)} with faults")
    for row in wrong:
        print(f"{row['document']}: {row['message']}", file=sys.stderr)
    return 2 if wrong else 0


if __name__ == "__main__":
    sys.exit(main())
