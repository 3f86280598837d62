#include "qto/hosts/libreoffice/office/office.hpp"

#include <dlfcn.h>
#include <signal.h>
#include <unistd.h>

#include <array>
#include <com/sun/star/beans/NamedValue.hpp>
#include <com/sun/star/container/XNameAccess.hpp>
#include <com/sun/star/lang/XMultiServiceFactory.hpp>
#include <com/sun/star/ucb/UniversalContentBroker.hpp>
#include <cppuhelper/bootstrap.hxx>
#include <cstdio>
#include <cstdlib>
#include <osl/file.hxx>
#include <rtl/bootstrap.hxx>

#include "qto/hosts/libreoffice/office/fail.hpp"

namespace qto::libreoffice {
namespace {

using com::sun::star::lang::XMultiServiceFactory;
constexpr const char* program = QTO_OFFICE_PROGRAM;
constexpr const char* known_version = "7.4";
constexpr const char* remedy =
    "; install Debian 12's package libreoffice-calc (version 7.4), for instance with "
    "tools/install_packages.sh --office";

/// What starting needs and the suite's interface for others does not have. It is there in the one
/// version that this library is made for.
struct PrivateCalls {
  void (*set_process_service_factory)(const uno::Reference<XMultiServiceFactory>&);
  void (*init_vcl)();
  void (*enable_headless_mode)(bool);
  void* (*get_or_create_application)();
};

template <class Function>
void look_up(void* library, const char* symbol, Function& function) {
  function = reinterpret_cast<Function>(dlsym(library, symbol));
  if (!function)
    fail("This version of LibreOffice is not one that qto knows" + std::string(remedy));
}

void* load(const char* name) {
  const std::string file = std::string(program) + "/" + name;
  if (void* library = dlopen(file.c_str(), RTLD_NOW | RTLD_GLOBAL)) return library;
  fail("LibreOffice cannot be loaded: " + std::string(dlerror()) + remedy);
}

PrivateCalls private_calls() {
  void* library = load("libmergedlo.so");
  PrivateCalls calls;
  look_up(library,
          "_ZN10comphelper24setProcessServiceFactoryERKN3com3sun4star3uno9ReferenceINS2_4lang20"
          "XMultiServiceFactoryEEE",
          calls.set_process_service_factory);
  look_up(library, "_Z7InitVCLv", calls.init_vcl);
  look_up(library, "_ZN11Application18EnableHeadlessModeEb", calls.enable_headless_mode);
  look_up(library, "_ZN14SfxApplication11GetOrCreateEv", calls.get_or_create_application);
  return calls;
}

OUString file_url(const std::string& path) {
  OUString url;
  osl::FileBase::getFileURLFromSystemPath(wide(path), url);
  return url;
}

/// What the process does at signals; the suite would put handlers of its own.
class KeptSignals {
 public:
  KeptSignals() {
    for (std::size_t i = 0; i < signals.size(); ++i) sigaction(signals[i], nullptr, &actions_[i]);
  }
  ~KeptSignals() {
    for (std::size_t i = 0; i < signals.size(); ++i) sigaction(signals[i], &actions_[i], nullptr);
  }

 private:
  static constexpr std::array signals{SIGHUP, SIGINT,  SIGQUIT, SIGILL,  SIGABRT, SIGFPE, SIGSEGV,
                                      SIGBUS, SIGTERM, SIGPIPE, SIGALRM, SIGCHLD, SIGUSR1};
  std::array<struct sigaction, signals.size()> actions_;
};

}  // namespace

// What is registered for the exit last comes first, and what belongs to the thread goes before all
// of it. So the end of the process comes before what the suite has registered for itself, whenever
// it did: it would wait for threads of its own for ever.
Office::ExitWatch::~ExitWatch() {
  on_exit([](int status, void*) { running().end_process(status); }, nullptr);
}

Office& Office::running() {
  static Office* office = nullptr;
  if (office) return *office;
  static bool failed = false;
  if (failed) fail("LibreOffice could not be started in this process");
  failed = true;
  office = new Office;
  failed = false;
  thread_local const ExitWatch watch;
  return *office;
}

Office::Office() {
  if (!std::filesystem::exists(std::string(program) + "/libsclo.so"))
    fail("LibreOffice Calc is not installed" + std::string(remedy));
  const PrivateCalls calls = private_calls();
  const KeptSignals kept;
  profile_ = std::make_unique<Profile>();
  setenv("SAL_USE_VCLPLUGIN", "svp", 1);
  rtl::Bootstrap::setIniFilename(file_url(std::string(program) + "/sofficerc"));
  rtl::Bootstrap::set("UserInstallation", file_url(profile_->folder().string()));
  guarded("Starting LibreOffice", [&] {
    context_ = cppu::defaultBootstrap_InitialComponentContext();
    check_version();
    calls.set_process_service_factory(
        uno::Reference<XMultiServiceFactory>(context_->getServiceManager(), uno::UNO_QUERY_THROW));
    calls.init_vcl();
    calls.enable_headless_mode(false);
    calls.get_or_create_application();
    com::sun::star::ucb::UniversalContentBroker::create(context_);
  });
}

void Office::check_version() const {
  using com::sun::star::container::XNameAccess;
  const uno::Reference<XMultiServiceFactory> provider(
      create("com.sun.star.configuration.ConfigurationProvider"), uno::UNO_QUERY_THROW);
  const uno::Any node(com::sun::star::beans::NamedValue(
      "nodepath", uno::Any(OUString("/org.openoffice.Setup/Product"))));
  const uno::Sequence<uno::Any> where(&node, 1);
  const uno::Reference<XNameAccess> product(
      provider->createInstanceWithArguments("com.sun.star.configuration.ConfigurationAccess",
                                            where),
      uno::UNO_QUERY_THROW);
  OUString version;
  product->getByName("ooSetupVersion") >>= version;
  if (!utf8(version).starts_with(known_version))
    fail("LibreOffice " + utf8(version) + " is installed, qto works with " + known_version +
         remedy);
}

uno::Reference<uno::XInterface> Office::create(const char* service) const {
  return context_->getServiceManager()->createInstanceWithContext(
      OUString::createFromAscii(service), context_);
}

// The suite cannot be ended properly here, what belongs to the main thread is gone already, and its
// libraries do not go well without. Nothing is lost: it writes into its own profile alone.
void Office::end_process(int status) {
  profile_.reset();
  std::fflush(nullptr);
  _exit(status);
}

}  // namespace qto::libreoffice
