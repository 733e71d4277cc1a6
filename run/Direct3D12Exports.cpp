// Read from the executable by the loader of the Direct3D 12 runtime, which takes the version of the
// runtime that lies in this folder, relative to the executable, over the system's own.

extern "C" {

extern __declspec(dllexport) const unsigned int D3D12SDKVersion;
extern __declspec(dllexport) const char* const D3D12SDKPath;

const unsigned int D3D12SDKVersion = 614;
const char* const D3D12SDKPath = ".\\resources\\D3D12\\";
}
