/// The version record of the shared library: what `readelf -p .qto.version` shows of it.
namespace {

[[gnu::used, gnu::retain, gnu::section(".qto.version")]] const char version_record[] =
    "FileDescription: " QTO_MODULE_DESCRIPTION
    "\0"
    "FileVersion: " QTO_MODULE_VERSION
    "\0"
    "OriginalFilename: " QTO_MODULE_NAME
    "\0"
    "OLESelfRegister";

}  // namespace
