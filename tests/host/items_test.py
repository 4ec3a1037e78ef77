#!/usr/bin/env python3
"""Tests configuration items: the file, and the commands items, set and unset."""
import json
import os

import host_case
from host_case import HostTest


class Items(HostTest):
    def test_items_that_are_not_understood_stop_the_program(self):
        self.write("config/config_items.ini", "[items]\nwhat is this\n")
        self.assert_fails(self.loaded("items"), 1, "config_items.ini:2:1: neither a [SECTION]")
        os.remove(self.config + "/config_items.ini")
        os.mkfifo(self.config + "/config_items.ini")
        self.assert_fails(self.loaded("items"), 1, "config_items.ini: is not a regular file")
        os.remove(self.config + "/config_items.ini")
        os.symlink("nowhere", self.config + "/config_items.ini")
        self.assert_fails(self.loaded("items"), 1, "config_items.ini: cannot be opened: No such file or directory")
        os.remove(self.config + "/config_items.ini")
        self.assertEqual(self.loaded("items").stdout, "ITEM  VALUE  READABLE\n")

    def test_an_item_that_is_not_an_integer_is_reported_and_counts_as_missing(self):
        self.write("config/config_items.ini", "[items]\nBig=2147483648\nIsTransQuelt=0 ; off\nOther=1\n")
        done = self.loaded("call", "IsTransQueltEnabled")
        self.assertEqual((done.returncode, done.stdout), (0, "result: true\n"))
        reason = "' is not an integer from -2147483648 to 2147483647; the item counts as missing\n"
        self.assertEqual(done.stderr, f"bundle_host: {self.config}/config_items.ini:2:1: Big: '2147483648{reason}"
                                      f"bundle_host: {self.config}/config_items.ini:3:1: IsTransQuelt: '0 ; off{reason}")

    def test_an_item_that_is_not_an_integer_is_listed_as_unreadable(self):
        self.write("config/config_items.ini", "[items]\nOther=x\n")
        self.assertEqual(self.loaded("items").stdout, "ITEM   VALUE  READABLE\nOther  x      no, not an integer\n")

    def test_items_can_be_set_and_unset_while_the_bundle_runs(self):
        done = self.loaded("run", "-", stdin="call IsTransQueltEnabled\nset IsTransQuelt 1\ncall IsTransQueltEnabled\n"
                                             "set IsTransQuelt 2\ncall IsTransQueltEnabled\n"
                                             "unset IsTransQuelt\ncall IsTransQueltEnabled\n")
        self.assertEqual(done.stdout, "result: false\nresult: true\nresult: false\nresult: true\n")

    def test_unsetting_a_missing_item_fails(self):
        self.assert_fails(self.loaded("unset", "IsTransQuel"), 1, "there is no item 'IsTransQuel'; did you mean IsTransQuelt?")
        self.assert_fails(self.loaded("unset", "x"), 1, "there is no item 'x'; 'items' lists them")

    def test_an_item_that_is_set_twice_stops_the_program(self):
        self.write("config/config_items.ini", "[items]\nIsTransQuelt=0\n\n  IsTransQuelt = 1\n")
        self.assert_fails(self.loaded("items"), 1, "config_items.ini:4:3: 'IsTransQuelt' is set a second time; keep one of the lines")

    def test_an_item_that_looks_misspelt_is_reported_and_the_program_continues(self):
        self.write("config/config_items.ini", "[items]\n IsTransQuelet=1\n")
        done = self.loaded("call", "IsTransQueltEnabled")
        self.assertEqual((done.returncode, done.stdout), (0, "result: true\n"))
        self.assertEqual(done.stderr, f"bundle_host: {self.config}/config_items.ini:2:2: 'IsTransQuelet' looks misspelt; "
                                      "did you mean IsTransQuelt?\n")

    def test_a_value_can_be_replaced_and_listed(self):
        done = self.loaded("run", "-", stdin="set IsTransQuelt 2147483647\nitems --json\n")
        self.assertEqual(json.loads(done.stdout), [{"item": "IsTransQuelt", "value": "2147483647", "readable": "yes"}])


if __name__ == "__main__":
    host_case.main()
