#include "qto/com/errors.hpp"

#include <new>
#include <string_view>

namespace qto::com {

std::int32_t current_error_number() noexcept {
  constexpr std::uint32_t run_time_error = 0x800A0000, no_memory = 0x8007000E, failed = 0x80004005;
  try {
    throw;
  } catch (const AutomationError& error) {
    return error.number;
  } catch (const NumberedFailure& failure) {
    const bool small = failure.number > 0 && failure.number <= 0xFFFF;
    return small ? static_cast<std::int32_t>(run_time_error + failure.number) : failure.number;
  } catch (const std::bad_alloc&) {
    return static_cast<std::int32_t>(no_memory);
  } catch (...) {
    return static_cast<std::int32_t>(failed);
  }
}

std::string current_error_text() {
  try {
    throw;
  } catch (const std::exception& failure) {
    return failure.what();
  } catch (...) {
    return "";
  }
}

}  // namespace qto::com
