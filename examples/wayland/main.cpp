// varn_wayland: C code from descriptions of Wayland protocols.

#include <cstdio>
#include <exception>
#include <getopt.h>
#include <map>
#include <stdexcept>
#include <string>
#include <vector>

#include <fmt/format.h>

#include "GenerationRun.hpp"
#include "ProtocolError.hpp"
#include "ProtocolReader.hpp"

namespace {

constexpr const char* program = "varn_wayland";

constexpr const char* usage =
    "Usage: varn_wayland -o FOLDER FILE.xml...\n"
    "Writes the C code of the Wayland protocols that the files describe into FOLDER and prints a\n"
    "table of what was written.\n"
    "\n"
    "  -o, --output FOLDER  where the files go; made when it is not there\n"
    "  -h, --help           print this\n"
    "\n"
    "Exit status: 0 when everything was written, 1 when a description cannot be used or a file\n"
    "cannot be written, 2 when the command line makes no sense.\n";

enum ExitStatus : int { Success = 0, Failure = 1, Misuse = 2 };

struct CommandLine {
  bool help = false;
  std::string folder;
  std::vector<std::string> files;
};

// A failure to write to standard error cannot be reported.
void complain(const std::string& text) { static_cast<void>(std::fputs(text.c_str(), stderr)); }

// The message for an option for which getopt_long() returned `found`, '?' or ':'.
std::string misusedOption(int found, const char* longOption) {
  const std::string option =
      optopt == 0 ? longOption : fmt::format("-{}", static_cast<char>(optopt));
  return fmt::format(found == ':' ? "'{}' needs a value" : "cannot use '{}'", option);
}

// Throws std::invalid_argument.
CommandLine parse(int argc, char** argv) {
  constexpr option options[] = {{"output", required_argument, nullptr, 'o'},
                                {"help", no_argument, nullptr, 'h'},
                                {nullptr, 0, nullptr, 0}};
  CommandLine commandLine;
  opterr = 0;
  int found = 0;
  while ((found = getopt_long(argc, argv, ":o:h", options, nullptr)) != -1) {
    if (found == 'o') {
      commandLine.folder = optarg;
    } else if (found == 'h') {
      commandLine.help = true;
    } else {
      throw std::invalid_argument(misusedOption(found, argv[optind - 1]));
    }
  }
  commandLine.files.assign(argv + optind, argv + argc);
  if (!commandLine.help && commandLine.folder.empty()) {
    throw std::invalid_argument("no output folder");
  }
  if (!commandLine.help && commandLine.files.empty()) {
    throw std::invalid_argument("no protocol description");
  }
  return commandLine;
}

std::vector<wayland::Protocol> readProtocols(const std::vector<std::string>& files) {
  std::vector<wayland::Protocol> protocols;
  std::map<std::string, std::string> places;
  for (const std::string& file : files) {
    wayland::Protocol& protocol = protocols.emplace_back(wayland::readProtocol(file));
    const auto [earlier, isNew] =
        places.emplace(protocol.name, fmt::format("{}:{}", file, protocol.line));
    if (!isNew) {
      throw wayland::ProtocolError(
          file, protocol.line,
          fmt::format("protocol '{}' is already described in {}", protocol.name, earlier->second));
    }
  }
  return protocols;
}

void generate(const CommandLine& commandLine) {
  wayland::GenerationRun run(commandLine.folder);
  for (const wayland::Protocol& protocol : readProtocols(commandLine.files)) {
    for (const std::string& warning : run.add(protocol)) {
      complain(fmt::format("{}: warning:\n{}\n", program, warning));
    }
  }
  run.write();
  run.report(stdout);
}

}  // namespace

int main(int argc, char** argv) {
  CommandLine commandLine;
  try {
    commandLine = parse(argc, argv);
  } catch (const std::invalid_argument& error) {
    complain(fmt::format("{0}: {1}\nTry '{0} --help'.\n", program, error.what()));
    return Misuse;
  }
  if (commandLine.help) {
    return std::fputs(usage, stdout) < 0 || std::fflush(stdout) != 0 ? Failure : Success;
  }
  try {
    generate(commandLine);
  } catch (const wayland::ProtocolError& error) {
    complain(fmt::format("{}\n", error.what()));
    return Failure;
  } catch (const std::exception& error) {
    complain(fmt::format("{}: {}\n", program, error.what()));
    return Failure;
  }
  return Success;
}
