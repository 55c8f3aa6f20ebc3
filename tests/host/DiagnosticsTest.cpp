#include <functional>

#include <gtest/gtest.h>

#include <varn/FileRepOrvBridge.hpp>
#include <varn/VarnFileRepository.hpp>

#include "orbel/RaisedText.hpp"

namespace Varn {
namespace {

TEST(Diagnostics, SayWhichFileSectionAndValue) {
  VarnFileRepository repository;
  FileRepOrvBridge& bridge = repository.orvBridge();
  CustomContents& custom = repository.createGenericFile("a.c").getCustomContent();
  bridge.addCustomSection(0, "Enums", "A");
  custom.getCustomSectionContent("A", "first");
  const std::pair<std::function<void()>, const char*> cases[] = {
      {[&] { bridge.addCustomSection(0, "Types", "A"); },
       "CustomContentPreviousAssociation: The custom section \"A\" cannot be attached to the "
       "built-in section \"Typedefs\": it is already attached to \"Enums\". The section of forward "
       "declarations shows as \"\"."},
      {[&] { custom.addContentToSection("N", "x"); },
       "CustomContentSectionDoesNotExist: The file \"a.c\" has no custom section \"N\". Declare "
       "the section before adding content to it."},
      {[&] { custom.getCustomSectionContent("A", "second"); },
       "CustomContentSectionAlreadyRetrieved: The content of the custom section \"A\" cannot be "
       "given to \"second\": the content of \"A\" was retrieved before, and it can be placed only "
       "once."},
      {[&] { bridge.addCustomSection(0, "Nowhere", "B"); },
       "CustomContentInvalidBuiltin: The custom section \"B\" cannot be attached to \"Nowhere\": "
       "there is no built-in section of that name."},
      {[&] { bridge.getFileFromIndex(-1); },
       "InvalidFileIndex: The repository has no file with the index -1. A file's index is its "
       "position in the file list, counted from 0."},
      {[&] { bridge.setAttribute(0, "Name", "x"); },
       "InvalidFileAttribute: \"Name\" is not the name of a file attribute or section that can be "
       "used here."},
  };
  for (const auto& [call, message] : cases) {
    EXPECT_EQ(std::string("Pyx:codeGen:") + message, raisedText(call));
  }
}

}  // namespace
}  // namespace Varn
