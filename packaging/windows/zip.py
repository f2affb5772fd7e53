#!/usr/bin/env python3
"""zip.py FOLDER FILE.zip: the folder, the same bytes for the same files and times."""
import sys
import time
import zipfile
from pathlib import Path

folder, target = Path(sys.argv[1]), Path(sys.argv[2])
with zipfile.ZipFile(target, "w", zipfile.ZIP_DEFLATED, compresslevel=9) as archive:
    for path in sorted(path for path in folder.rglob("*") if path.is_file()):
        stamp = time.gmtime(path.stat().st_mtime)[:6]
        entry = zipfile.ZipInfo(str(path.relative_to(folder.parent)), stamp)
        entry.compress_type = zipfile.ZIP_DEFLATED
        entry.external_attr = 0o644 << 16
        archive.writestr(entry, path.read_bytes())
