# The fuzz targets, one line each. Included by two builds that define
# straightlux_fuzz_target(NAME SOURCES ... [LINK ...]) differently:
#   fuzz/CMakeLists.txt (scripts/fuzz.sh, clang): a libFuzzer program
#       fuzz_NAME, built with -fsanitize=fuzzer,address,undefined;
#   tests/fuzz/CMakeLists.txt (the normal build, any compiler): a program
#       replay_NAME that runs every file of fuzz/corpus/NAME through the
#       target once, registered as the CTest test fuzz_replay_NAME.
# A target is a file fuzz/<Name>Fuzz.cpp defining LLVMFuzzerTestOneInput
# (and LLVMFuzzerInitialize when it needs set-up) plus its seed corpus in
# fuzz/corpus/NAME/ (a few small files; inputs that once failed go there
# too, so the replay keeps them fixed). Paths are relative to fuzz/.
# Every target may use STRAIGHTLUX_PLUGIN, the built plug-in's path; the
# replay also defines STRAIGHTLUX_FUZZ_REPLAY, for checks too slow to make
# on every fuzzed input.

# The simulated host's set-up reader, with the real plug-in's records.
straightlux_fuzz_target(setup_reader
  SOURCES SetupReaderFuzz.cpp
  LINK simhost safeio)

# sparkrun's command line, and the control values, frame ranges and file
# patterns it carries, with the real plug-in's records.
straightlux_fuzz_target(command_line
  SOURCES CommandLineFuzz.cpp
  LINK sparkapp_run)

# The amplitude file reader of the "Import Amplitude File" button.
straightlux_fuzz_target(amplitude_file
  SOURCES AmplitudeFileFuzz.cpp
  LINK ZelLibrary)

# sparkrun's lines file reader and writer.
straightlux_fuzz_target(lines_file
  SOURCES LinesFileFuzz.cpp
  LINK sparkapp_lines)

# One whole frame through the real plug-in with random records, an overlay
# drawing and pointer events.
straightlux_fuzz_target(spark_process
  SOURCES SparkProcessFuzz.cpp
  LINK simhost)
