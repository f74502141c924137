# Every harness, one line each: its name, which is also its folder in corpus/, its source and what it links.
# fuzz/ builds each as a fuzzer, tests/fuzz/ as a test that replays its corpus.
quillbook_harness(typedstream TypedStreamFuzzer.cpp quillbook_typedstream quillbook_core_text)
quillbook_harness(attributed-body AttributedBodyFuzzer.cpp quillbook_store quillbook_core_text)
quillbook_harness(keybag KeybagFuzzer.cpp quillbook_backup quillbook_core_text)
quillbook_harness(property-list PropertyListFuzzer.cpp quillbook_backup quillbook_core_text)
quillbook_harness(file-record FileRecordFuzzer.cpp quillbook_backup quillbook_core_text)
