// The loader of the Direct3D 12 runtime reads these exports of the executable. It then prefers the
// runtime of this version in this folder, relative to the executable, to the system's.

extern "C" {

extern __declspec(dllexport) const unsigned int D3D12SDKVersion;
extern __declspec(dllexport) const char* const D3D12SDKPath;

const unsigned int D3D12SDKVersion = 614;
const char* const D3D12SDKPath = ".\\resources\\D3D12\\";
}
