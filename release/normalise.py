#!/usr/bin/env python3
"""Writes archives (.tar.gz, .zip) anew, so that the same files give the same bytes: in the order of
their names, all of the day of SOURCE_DATE_EPOCH, of no user in particular.

usage: normalise.py ARCHIVE...
"""
import gzip
import io
import os
import sys
import tarfile
import time
import zipfile
from pathlib import Path

DAY = int(os.environ['SOURCE_DATE_EPOCH'])


def tar(data):
    out = io.BytesIO()
    with tarfile.open(fileobj=io.BytesIO(gzip.decompress(data))) as old, \
         tarfile.open(fileobj=out, mode='w', format=tarfile.GNU_FORMAT) as new:
        for member in sorted(old.getmembers(), key=lambda each: each.name):
            member.mtime = DAY
            member.uid = member.gid = 0
            member.uname = member.gname = 'root'
            member.mode = 0o755 if member.isdir() or member.mode & 0o100 else 0o644
            new.addfile(member, old.extractfile(member) if member.isreg() else None)
    return gzip.compress(out.getvalue(), mtime=0)


def zipped(data):
    out = io.BytesIO()
    with zipfile.ZipFile(io.BytesIO(data)) as old, zipfile.ZipFile(out, 'w') as new:
        for name in sorted(old.namelist()):
            new.writestr(zipfile.ZipInfo(name, time.gmtime(DAY)[:6]), old.read(name),
                         zipfile.ZIP_DEFLATED)
    return out.getvalue()


for path in map(Path, sys.argv[1:]):
    path.write_bytes((zipped if path.suffix == '.zip' else tar)(path.read_bytes()))
