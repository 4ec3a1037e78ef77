#!/usr/bin/env python3
"""Tests loading and unloading, by directive and by name, with faulty bundles and files."""
import json
import os
import shutil
import signal
import subprocess
import tempfile

import host_case
from host_case import BUNDLE, HOST, HostTest, broken


class Loading(HostTest):
    def test_a_missing_library_is_reported(self):
        self.assert_fails(self.host("-b", "/none.so", "bundles"), 1, "/none.so: no such library")
        self.assert_fails(self.host("-b", "none", "bundles"), 1, "none: no such library; looked in the working directory and where the "
                          f"dynamic linker looks (LD_LIBRARY_PATH and the system's directories), in {os.path.dirname(os.path.realpath(HOST))}\n")

    def test_a_file_that_is_not_a_library_is_reported(self):
        path = self.write("libtext.so", "text")
        self.assert_fails(self.host("-b", path, "bundles"), 1, "libtext.so: cannot be loaded")

    def test_a_missing_factory_is_reported_with_what_it_should_be(self):
        self.assert_fails(self.host("-b", broken("no_factory"), "bundles"), 1, "has no factory _make_broken_no_factory")

    def test_a_failing_init_unloads_everything(self):
        missing = "; looked up and not registered: WantedInterface"
        for kind, reason in [("init_fails", ": init returned -1 (a reason of init)" + missing),
                             ("null_factory", ": the factory returned null\n"),
                             ("throwing", ": init threw: no wheels" + missing),
                             ("factory_throws", ": the factory threw: something that is not a std::exception\n")]:
            # The throwing factory leaks its allocation.
            quiet = {"ASAN_OPTIONS": "detect_leaks=0"}
            with self.subTest(kind=kind):
                self.assert_fails(self.host("-b", broken(kind), "bundles", environment=quiet), 1, reason)
                lines = f"load {broken(kind)}\n"
                done = self.host("run", "-", stdin=lines, environment=quiet)
                self.assert_fails(done, 1, "stdin:1:1: ")

    def test_an_init_without_a_configuration_directory_fails(self):
        done = self.host("--log-level", "off", "-b", BUNDLE, "bundles")
        self.assert_fails(done, 1, "init returned -1; no configuration directory is known: give --config-dir or set BUNDLE_HOST_CONFIG_DIR")
        done = self.host("--config-dir", self.config, "load", broken("talks"), "fail")
        self.assertIn("broken_talks: init returned -1; its log records may say more", done.stderr)

    def test_a_failing_fini_is_reported_and_does_not_keep_a_bundle_loaded(self):
        for kind, reason in [("fini_fails", "fini returned -1"), ("fini_throws", "fini threw: no brakes")]:
            with self.subTest(kind=kind):
                done = self.host("-b", broken(kind), "unload", f"broken_{kind}")
                self.assertIn(f"libbroken_{kind}.so is unmapped", done.stdout)
                self.assert_fails(done, 1, f"broken_{kind}: {reason}")
                self.assert_fails(self.host("-b", broken(kind), "bundles"), 1, reason)

    def test_a_library_that_is_cut_short_is_refused_before_it_is_mapped(self):
        path = os.path.join(self.dir, "libii_ascii_util.so")
        with open(BUNDLE, "rb") as whole, open(path, "wb") as part:
            part.write(whole.read(4096))
        self.assert_fails(self.host("-b", path, "bundles"), 1, f"{path}: cannot be loaded: the process that tries it ends by SIGBUS; a constructor crashes, or the file is cut short")

    def test_a_library_without_its_last_byte_is_refused(self):
        path = os.path.join(self.dir, "libii_ascii_util.so")
        with open(BUNDLE, "rb") as whole, open(path, "wb") as part:
            part.write(whole.read()[:-1])
        self.assert_fails(self.host("-b", path, "bundles"), 1,
                          f"{path}: cannot be loaded: {path}: the file is cut short (is it still being written?)")

    def test_a_library_that_is_cut_short_is_refused_where_the_linker_would_find_it(self):
        path = os.path.join(self.dir, "libii_ascii_util.so")
        with open(BUNDLE, "rb") as whole, open(path, "wb") as part:
            part.write(whole.read(20000))
        conf = self.write("svc.conf", "dynamic a Service_Object * ii_ascii_util:_make_ii_ascii_util() \"\"\n")
        path = {"LD_LIBRARY_PATH": self.dir + ":" + os.environ.get("LD_LIBRARY_PATH", "")}
        for options in [("-b", "ii_ascii_util"), ("-b", "libii_ascii_util.so"), ("-f", conf)]:
            with self.subTest(options=options):
                self.assert_fails(self.host(*options, "bundles", environment=path), 1, "or the file is cut short (is it still being written?)")
        os.makedirs(os.path.join(self.dir, "glibc-hwcaps/x86-64-v2"))
        os.rename(os.path.join(self.dir, "libii_ascii_util.so"),
                  os.path.join(self.dir, "glibc-hwcaps/x86-64-v2/libii_ascii_util.so"))
        self.assert_fails(self.host("-b", "ii_ascii_util", "bundles", environment=path), 1, "or the file is cut short (is it still being written?)")

    def test_a_huge_file_is_not_a_library_and_not_read(self):
        path = self.write("libhuge.so", "")
        os.truncate(path, 1 << 40)
        self.assert_fails(self.host("-b", path, "bundles"), 1, "libhuge.so: cannot be loaded: ")

    def test_a_name_in_a_directive_is_never_taken_from_the_working_directory(self):
        os.mkdir(os.path.join(self.dir, "ii_ascii_util"))
        self.write("libii_ascii_util.so", "text")
        conf = self.write("svc.conf", "dynamic a Service_Object * ii_ascii_util:_make_ii_ascii_util() \"\"\n")
        path = {"LD_LIBRARY_PATH": os.path.dirname(BUNDLE) + ":" + os.environ.get("LD_LIBRARY_PATH", "")}
        done = self.host("-c", self.config, "--log-level", "off", "-f", conf, "bundles", environment=path, directory=self.dir)
        self.assertEqual((done.returncode, done.stderr), (0, ""), done)

    def test_a_library_to_load_may_be_a_file_of_the_working_directory(self):
        shutil.copy(BUNDLE, self.dir)
        os.mkdir(os.path.join(self.dir, "none"))
        options = ["-c", self.config, "--log-level", "off"]
        done = self.host(*options, "-b", os.path.basename(BUNDLE), "bundles", directory=self.dir)
        self.assertIn(os.path.join(self.dir, os.path.basename(BUNDLE)), done.stdout)
        self.assert_fails(self.host(*options, "-b", "none", "bundles", directory=self.dir), 1,
                          "none: no such library; looked in the working directory and where the dynamic linker looks")

    def test_a_link_or_the_file_that_it_leads_to_has_the_bundles_name(self):
        for link, file in [("libii_ascii_util.so", "libii-1.0.so"), ("libcurrent.so", "libii_ascii_util.so")]:
            with self.subTest(link=link):
                directory = tempfile.mkdtemp(dir=self.dir)
                shutil.copy(BUNDLE, os.path.join(directory, file))
                os.symlink(file, os.path.join(directory, link))
                done = self.host("-c", self.config, "--log-level", "off", "-b", os.path.join(directory, link), "bundles",
                                 "--json")
                self.assertEqual([row["name"] for row in json.loads(done.stdout)], ["ii_ascii_util"])

    def test_only_a_file_name_has_lib_in_front_of_the_bundles_name(self):
        shutil.copy(BUNDLE, os.path.join(self.dir, "liblibrary.so"))
        path = {"LD_LIBRARY_PATH": self.dir + ":" + os.environ.get("LD_LIBRARY_PATH", "")}
        self.assert_fails(self.host("-b", "library", "bundles", environment=path), 1, "has no factory _make_library;")

    def test_a_library_of_the_other_byte_order_is_reported_in_the_linkers_words(self):
        path = os.path.join(self.dir, "libii_ascii_util.so")
        with open(BUNDLE, "rb") as whole:
            library = bytearray(whole.read())
        library[5] ^= 3  # EI_DATA, 1 or 2
        library[32:40] = reversed(library[32:40])  # e_phoff, the offset of the program headers
        with open(path, "wb") as file:
            file.write(library)
        self.assert_fails(self.host("-b", path, "bundles"), 1, "ELF file data encoding not ")

    def test_a_directory_is_not_a_library(self):
        self.assert_fails(self.host("-b", self.dir, "bundles"), 1, "Is a directory")

    def test_an_object_that_its_exterminator_does_not_destroy_is_reported_and_destroyed(self):
        library = broken("lazy_exterminator")
        done = self.host("run", "-", stdin=f"load {library}\nunload broken_lazy_exterminator\n")
        self.assertIn("libbroken_lazy_exterminator.so is unmapped", done.stdout)
        self.assertEqual(done.returncode, 1)
        self.assertIn("its exterminator did not destroy the service object", done.stderr)

    def test_messages_of_a_successful_load_are_logged(self):
        done = self.host("-b", broken("lazy_exterminator"), "bundles")
        self.assertIn(" [-] ACE:0 -: a warning of init\n", done.stderr)

    def test_a_library_that_stays_mapped_is_reported_with_the_reason(self):
        done = self.host("-b", broken("pinned"), "unload", "broken_pinned")
        self.assertEqual(done.returncode, 0, done)
        self.assertIn("is still mapped: it is linked with -z nodelete", done.stdout)

    def test_a_link_whose_target_has_no_factory_either_is_reported_by_the_links_name(self):
        link = os.path.join(self.dir, "libother.so")
        os.symlink(broken("no_factory"), link)
        self.assert_fails(self.host("-b", link, "bundles"), 1, "has no factory _make_other;")

    def test_the_output_of_a_failing_command_comes_before_its_problem(self):
        done = subprocess.run([HOST, "-b", broken("fini_fails"), "unload", "broken_fini_fails"], stdout=subprocess.PIPE,
                              stderr=subprocess.STDOUT, text=True, timeout=200, check=False)
        self.assertEqual([line.split()[0] for line in done.stdout.splitlines()], ["unloaded", "bundle_host:"])

    def test_a_constructor_prints_once_and_reads_the_hosts_input(self):
        done = self.host("-b", broken("constructor_reads"), "log", stdin="ab")
        self.assertEqual((done.returncode, done.stdout), (0, "constructor read a\nlog level: 0\n"))

    def test_a_second_bundle_of_one_name_is_refused(self):
        self.assert_fails(self.loaded("load", BUNDLE), 2, "a bundle ii_ascii_util is loaded already; unload it first")

    def test_arguments_reach_init_unchanged(self):
        words = ["a'b", 'say "x"', "$HOME", "back\\slash", "", "a # b", "{", "a" * 5000]
        done = self.host("load", broken("talks"), *words)
        self.assertEqual(done.stdout.splitlines()[:len(words) + 1],
                         [f"broken_talks: init with {len(words)} arguments and a null after them", *words])

    def test_a_directives_arguments_are_split_as_ace_does(self):
        conf = self.write("svc.conf", f"dynamic talks Service_Object * {broken('talks')}:_make_broken_talks() "
                                      "inactive \"one 'two # three' $SIDE\" # comment\n")
        done = self.host("-f", conf, "bundles", environment={"SIDE": "left"})
        self.assertEqual(done.stdout.splitlines()[:4], ["broken_talks: init with 3 arguments and a null after them",
                                                        "one", "two # three", "left"])

    def test_more_arguments_than_ace_holds_in_a_directive_are_refused_before_anything_is_called(self):
        message = ":1:1: the arguments take 4095 bytes in a directive; ACE's limit is 4094; have the bundle read them from a file"
        directive = f"dynamic talks Service_Object * {broken('talks')}:_make_broken_talks() \"%s\"\n"
        self.assertEqual(self.host("-f", self.write("svc.conf", directive % ("a" * 4094)), "bundles").returncode, 0)
        done = self.host("-f", self.write("svc.conf", directive % ("a" * 4095)), "bundles")
        self.assert_fails(done, 1, message)
        self.assertEqual(done.stdout, "")

    def test_a_path_may_hold_any_character(self):
        directory = os.path.join(self.dir, "a #'b\" {c}:(d)")
        os.mkdir(directory)
        shutil.copy(broken("talks"), directory)
        done = self.host("-b", os.path.join(directory, "libbroken_talks.so"), "bundles", "--json")
        self.assertEqual((done.returncode, done.stderr), (0, ""), done)

    def test_bundles_are_unloaded_in_the_opposite_order(self):
        done = self.host("-b", broken("talks"), "-b", broken("talks_too"), "bundles", "--json")
        self.assertEqual([line for line in done.stdout.splitlines() if "fini" in line],
                         ["broken_talks_too: fini", "broken_talks: fini"])

    def test_a_constructor_that_ends_the_process_is_reported_and_the_host_continues(self):
        for kind, reason in [("constructor_crashes", "the process that tries it ends by SIGSEGV; a constructor crashes, or"),
                             ("constructor_exits", "a constructor ends the process, with exit code 3")]:
            with self.subTest(kind=kind):
                self.assert_fails(self.host("-b", broken(kind), "bundles"), 1, f"{kind}.so: cannot be loaded: {reason}")

    def test_a_missing_symbol_is_found_when_the_library_is_loaded(self):
        self.assert_fails(self.host("-b", broken("missing_symbol"), "bundles"), 1, "undefined symbol: MissingEverywhere")

    def test_a_crash_is_reported_by_the_call_and_ends_the_process_by_its_signal(self):
        for kind, line in [("init_crashes", "crashed in init of broken_init_crashes: SIGSEGV"),
                           ("init_overflows", "crashed in init of broken_init_overflows: SIGSEGV"),
                           ("factory_crashes", "crashed in the factory of broken_factory_crashes: SIGABRT"),
                           ("fini_crashes", "crashed in fini of broken_fini_crashes: SIGFPE")]:
            with self.subTest(kind=kind):
                done = self.host("-b", broken(kind), "bundles")
                self.assertIn(f"bundle_host: {line}\n", done.stderr)
                if "Sanitizer" not in done.stderr:  # A sanitizer's handler ends the process with its own exit code.
                    self.assertEqual(done.returncode, -getattr(signal, line.rpartition(" ")[2]))

    def test_a_crash_at_exit_loses_no_output_of_the_command(self):
        self.assertIn("broken_fini_crashes", self.host("-b", broken("fini_crashes"), "bundles").stdout)

    def test_a_crash_signal_from_another_process_ends_the_host_too(self):
        with subprocess.Popen([HOST, "load", broken("init_hangs")], stdin=subprocess.PIPE, stderr=subprocess.PIPE, text=True,
                              stdout=subprocess.PIPE) as process:
            self.assertEqual(process.stdout.readline(), "init begins\n")
            process.send_signal(signal.SIGSEGV)
            _, err = process.communicate(timeout=200)
        self.assertIn("bundle_host: crashed in init of broken_init_hangs: SIGSEGV\n", err)
        if "Sanitizer" not in err:
            self.assertEqual(process.returncode, -signal.SIGSEGV)

    def test_a_bundle_can_be_loaded_under_valgrind(self):
        with open(HOST, "rb") as file:
            if shutil.which("valgrind") is None or b"__asan" in (program := file.read()) or b"__tsan" in program:
                self.skipTest("no valgrind, or a sanitizer, which does not run under it")
        done = subprocess.run(["valgrind", "-q", "--error-exitcode=9", HOST, *self.with_bundle("bundles", "--json")],
                              capture_output=True, text=True, timeout=300, check=False)
        self.assertEqual((done.returncode, done.stderr), (0, ""))

    def test_a_slow_init_is_reported_once_while_it_runs(self):
        with subprocess.Popen([HOST, "load", broken("init_hangs")], stdin=subprocess.PIPE, stderr=subprocess.PIPE, text=True,
                              stdout=subprocess.DEVNULL) as process:
            # The bundle's init continues when its standard input ends.
            self.assertEqual(process.stderr.readline(), "bundle_host: init of broken_init_hangs is still running after 3 s; "
                                                         "Ctrl-C twice ends the program\n")
            self.assertIsNone(process.poll())
            _, rest = process.communicate(timeout=200)
        self.assertEqual((process.returncode, rest), (0, ""))

    def test_a_library_is_found_beside_the_program(self):
        program = os.path.join(self.dir, "bundle_host")
        shutil.copy(HOST, program)
        shutil.copy(broken("talks"), self.dir)
        conf = self.write("svc.conf", "dynamic talks Service_Object * broken_talks:_make_broken_talks() \"\"\n")
        for options in (["-b", "broken_talks"], ["-f", conf]):
            with self.subTest(options=options):
                done = subprocess.run([program, *options, "bundles"], capture_output=True, text=True, timeout=200, check=False, cwd="/",
                                      env={**os.environ, "LD_LIBRARY_PATH": os.path.dirname(HOST)})
                self.assertEqual((done.returncode, done.stderr), (0, ""), done)
                self.assertIn(f"{self.dir}/libbroken_talks.so", done.stdout)

    def test_a_svc_conf_loads_bundles(self):
        conf = self.write("svc.conf", f"# one\n\r\n \t\r\ndynamic util Service_Object * {BUNDLE}:_make_ii_ascii_util() \"\"\n")
        done = self.host("-c", self.config, "--log-level", "off", "--svc-conf", conf, "bundles", "--json")
        self.assertEqual([row["name"] for row in json.loads(done.stdout)], ["util"])

    def test_a_wrong_directive_is_reported_with_its_place(self):
        for text, place, reason in [
            ("\n\n  nonsense here\n", ":3:3: ", "'nonsense' is not a directive"),
            ("nonsense\n", ":1:1: ", "'nonsense' is not a directive"),
            ("static absent\n", ":1:1: ", "the directive failed"),
            ("suspend absent\n", ":1:1: ", "no bundle 'absent' is loaded; 'bundles' lists them"),
            ("suspend\n", ":1:1: ", "'suspend' needs the name of a service"),
            (f"dynamic a Service_Object * {BUNDLE}:_make_ii_ascii_util \"\"\n", ":1:1: ", "write dynamic NAME"),
            (f"dynamic a Service_Object * {BUNDLE}:_make_ii_ascii_util() actve \"\"\n", ":1:1: ", "write dynamic NAME"),
            (f"dynamic a STREAM * {BUNDLE}:_make_ii_ascii_util() \"\"\n", ":1:1: ", "write dynamic NAME"),
            ("suspend a\0b\n", ":1:10: ", "a NUL byte"),
            ("# x\n\tdynamic a Service_Object * /none.so:_make_a() \"\"\n", ":2:2: ", "/none.so: no such library"),
            (f"dynamic a Service_Object * {BUNDLE}:_make_b() \"\"\n", ":1:1: ", "has no factory _make_b"),
            ("dynamic a Service_Object * x:_y()\"open\nclosed\"\n", ":1:34: ", "the quote \" is not closed"),
            ("dynamic a Service_Object * x:_y() {\n { }\n", ":1:35: ", "unexpected '{'; stream directives are not supported"),
            (f"dynamic a Service_Object * {BUNDLE}:_make_ii_ascii_util() \"{{\" # {{\n }}\n", ":2:2: ", "unexpected '}'"),
            ("dynamic a Service_Object * x:_y() 'a\"b\n", ":1:35: ", " is not closed"),
            ("remove a b # c\n", ":1:1: ", "'remove' takes the name of a service and nothing after it, not 'b'"),
            ("suspend a b\n", ":1:1: ", "'suspend' takes the name of a service and nothing after it"),
            (f"dynamic a.b Service_Object * {BUNDLE}:_make_ii_ascii_util() \"\"\n", ":1:1: ", "a.b: not a valid bundle name"),
            (f"dynamic active Service_Object * {BUNDLE}:_make_ii_ascii_util() \"\"\n", ":1:1: ", "active: not a valid bundle name"),
            (f"dynamic {'a' * 4097} Service_Object * {BUNDLE}:_make_ii_ascii_util() \"\"\n", ":1:1: ", " is too long for a name"),
            (f"dynamic 1a Service_Object * {BUNDLE}:_make_ii_ascii_util() \"\"\n", ":1:1: ", "1a: not a valid bundle name"),
            ("remove absent\n", ":1:1: ", "no bundle 'absent' is loaded"),
            ("\xef\xbb\xbfremove absent\n", ":1:1: ", "a byte order mark"),
        ]:
            with self.subTest(text=text):
                conf = self.write("svc.conf", text)
                done = self.host("-c", self.config, "--log-level", "off", "--svc-conf", conf, "bundles")
                self.assert_fails(done, 1, conf + place)
                self.assertIn(reason, done.stderr)

    def test_a_library_that_two_bundles_share_stays_for_the_other(self):
        conf = self.write("svc.conf", "".join(
            f"dynamic {name} Service_Object * {BUNDLE}:_make_ii_ascii_util() \"\"\n" for name in "uv"))
        done = self.host("-c", self.config, "--log-level", "off", "--svc-conf", conf, "unload", "u")
        self.assertIn("is still mapped: bundle v was loaded from it", done.stdout)

    def test_loading_and_unloading_again_and_again_leaves_nothing(self):
        once = f"load {BUNDLE}\ncall IsTransQueltEnabled\ncall WriteDbgLog x\nunload ii_ascii_util\n"
        done = self.host("-c", self.config, "--log-level", "off", "run", "-", stdin=once * 30 + "services\ninterfaces --json\n")
        self.assertEqual(done.returncode, 0, done.stderr)
        self.assertEqual(done.stdout.count("is unmapped\n"), 30)
        self.assertNotIn("ii_ascii_util\n", done.stdout.splitlines()[-4:])
        self.assertIn('"name":"AsciiUtilInterface","state":"withdrawn","count":"0"', done.stdout)

    def test_init_reads_the_configuration_again(self):
        self.write("new.csv", "LINK\tRTR\tdown\t7\t16\n")
        with subprocess.Popen([HOST, "-c", self.config, "--log-level", "off", "-b", BUNDLE, "run", "-"], text=True,
                              stdin=subprocess.PIPE, stdout=subprocess.PIPE) as process:
            process.stdin.write("call GetAlmCfgValue LINK RTR down 7\n")
            process.stdin.flush()
            self.assertEqual([process.stdout.readline() for _ in range(2)], ["result: 0\n", "value: 15\n"])
            os.replace(self.dir + "/new.csv", self.config + "/ii_asciiagent_bundle/AlarmConfig.csv")
            out, _ = process.communicate("init ii_ascii_util\ncall GetAlmCfgValue LINK RTR down 7\n", timeout=200)
        self.assertEqual(out, "initialised ii_ascii_util\nresult: 0\nvalue: 16\n")

    def test_unloading_an_unknown_bundle_says_what_was_meant(self):
        self.assert_fails(self.loaded("init", "absent"), 1, "no bundle 'absent' is loaded; 'bundles' lists them")
        self.assert_fails(self.loaded("unload", "ii_asci_util"), 1, "no bundle 'ii_asci_util' is loaded; did you mean ii_ascii_util?")


if __name__ == "__main__":
    host_case.main()
