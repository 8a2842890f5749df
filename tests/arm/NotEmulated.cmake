# Tests that say nothing about the unit when its programs run in an emulator: one row a test, with the reason. CTest
# reports them as skipped. Tests of which only a part cannot run there skip that part themselves.
set(not_emulated_tst_serial_unplug_cost
  "measures milliseconds of the processor; the emulator translates the program meanwhile, and that takes longer")
