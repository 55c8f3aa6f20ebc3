#ifndef ORV_TRACING_SCRIPTLINES_HPP
#define ORV_TRACING_SCRIPTLINES_HPP

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include <pybind11/pybind11.h>

#include <orbel/Handle.hpp>

#include "python/orbel/native/Observer.hpp"
#include "python/orv/native/tracing/Trace.hpp"

namespace orv {

// Which lines of a host script, and of the user's modules that it calls, add text to sections. It
// observes the calls of the script while that runs.
class ScriptLines final : public orbel::python::Observer {
 public:
  // `nameOf` gives the name of the source for the file of Python code, None when it is not the
  // user's. The trace must outlive this.
  ScriptLines(Trace& trace, const std::string& script, pybind11::function nameOf);

  void called(const orbel::Method& method, orbel::Arguments arguments) override;

  // The script without a line: for what is added in a way that is not observed.
  std::uint32_t script() const { return script_; }
  // The origins of what was added, by section that still exists.
  Trace::Added added() const;

 private:
  struct Line {
    int end;  // of its instructions, as an offset in the code
    std::uint32_t number;
  };
  // A function or module. Its object is kept so that its address is not used again.
  struct Code {
    pybind11::object object;
    bool isUsers;
    std::uint32_t file;  // in the trace's strings
    std::vector<Line> lines;
  };
  struct Section {
    orbel::Handle handle;
    Ranges ranges;
  };

  std::size_t sizeAdded(Varn::FileSection& section, const std::string& method,
                        orbel::Arguments arguments);
  // The site of the innermost line of the user that runs.
  std::uint32_t currentSite();
  const Code& codeOf(const pybind11::object& object);
  std::uint32_t siteAt(const Code& code, int offset);

  Trace& trace_;
  pybind11::function nameOf_;
  std::uint32_t script_;
  std::unordered_map<const PyObject*, Code> codes_;
  // By file and line.
  std::map<std::pair<std::uint32_t, std::uint32_t>, std::uint32_t> sites_;
  std::unordered_map<const orbel::ObjectIdentity*, Section> sections_;
};

}  // namespace orv

#endif
