"""Writes the texts of data/sample_site anew: the master data, and a month of transaction files.

A developer's tool; the build reads only what it wrote. The seed is fixed, so a run changes nothing
unless the tables of these files changed. See data/sample_site/README.md for the forms of the texts.

    python3 tools/generate_sample_site [FOLDER]
"""

import pathlib
import sys

sys.dont_write_bytecode = True

from month import write_month  # pylint: disable=wrong-import-position
from site_tables import write_master_data  # pylint: disable=wrong-import-position


def main():
    default = pathlib.Path(__file__).resolve().parent.parent.parent / "data" / "sample_site"
    folder = pathlib.Path(sys.argv[1]) if len(sys.argv) > 1 else default
    write_master_data(folder)
    write_month(folder)


if __name__ == "__main__":
    main()
