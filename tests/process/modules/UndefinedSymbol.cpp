// Needs a function that doesn't exist.
extern "C" int FunctionThatNobodyHas();

extern "C" __attribute__((visibility("default"))) unsigned TarnexModuleVersion() {
    return static_cast<unsigned>(FunctionThatNobodyHas());
}
