#!/usr/bin/env python3
"""Gives the times that the help compiler leaves in a collection a fixed value.

That makes a package of the same sources the same bytes. The time is SOURCE_DATE_EPOCH, in seconds;
without it the collection stays as it is. Takes the path of the collection.
"""
import datetime
import os
import sqlite3
import sys


def fix_times(path, seconds):
    text = datetime.datetime.utcfromtimestamp(seconds).isoformat()
    # A file that grew in another order differs in its pages; a new one is laid out by its contents.
    fresh = path + ".new"
    collection = sqlite3.connect(path)
    collection.execute("UPDATE SettingsTable SET Value = ? WHERE Key = 'CreationTime'", (seconds,))
    collection.execute("UPDATE SettingsTable SET Value = ? WHERE Key = 'LastRegisterTime'", (text,))
    collection.execute("UPDATE TimeStampTable SET TimeStamp = ?", (text,))
    collection.commit()
    collection.execute("VACUUM INTO ?", (fresh,))
    collection.close()
    os.replace(fresh, path)


if "SOURCE_DATE_EPOCH" in os.environ:
    fix_times(sys.argv[1], int(os.environ["SOURCE_DATE_EPOCH"]))
