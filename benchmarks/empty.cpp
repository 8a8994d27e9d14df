extern "C" void Nothing() {}
