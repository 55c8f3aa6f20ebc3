#ifndef ORBEL_TESTS_RAISEDTEXT_HPP
#define ORBEL_TESTS_RAISEDTEXT_HPP

#include <string>

#include <orbel/Diagnostics.hpp>

// The whole message that `call` raises, or "nothing raised".
template <class Call>
std::string raisedText(Call call) {
  try {
    call();
  } catch (const orbel::HostException& error) {
    return error.what();
  }
  return "nothing raised";
}

#endif
