# The library itself: one shared library of the sources in the folders of its subsystems.

add_library(varn_filepackaging SHARED
  sections/FileSection.cpp
  sections/FileSectionFragment.cpp
  sections/FragmentStore.cpp
  sections/FunctionsSection.cpp
  sections/IncludeLines.cpp
  sections/IncludesSection.cpp
  sections/LockedStream.cpp
  sections/NewSection.cpp
  sections/SectionKindTable.cpp
  sections/StringFileSectionFragment.cpp
  sections/TableContent.cpp
  sections/TextPage.cpp
  sections/TextPool.cpp
  sections/UniqueNames.cpp
  sections/VarnFileContent.cpp
  sections/VarnFileContentBuilder.cpp
  sections/VarnFileContentCreator.cpp
  sections/VarnModuleFileContentBuilder.cpp
  sections/VarnSDataTypesFileContentBuilder.cpp
  sections/VarnSGenericFileContentBuilder.cpp
  files/FileRepErrorStatus.cpp
  files/RegisteredNames.cpp
  files/VarnDataTypesFile.cpp
  files/VarnFile.cpp
  files/VarnFileNameTable.cpp
  files/VarnFileRepository.cpp
  files/VarnGenericFile.cpp
  files/VarnModuleFile.cpp
  files/getSysName.cpp
  custom/CustomContents.cpp
  custom/CustomSection.cpp
  bridge/AttributeTable.cpp
  bridge/FileRepOrvBridge.cpp
  bridge/VarnFilePackagingManager.cpp
  bridge/VarnFilePackagingOrvBridge.cpp
  host/Module.cpp
  host/VarnFilePackagingPackage.cpp
  host/diagnostics/Diagnostics.cpp)
set_source_files_properties(host/Module.cpp PROPERTIES COMPILE_DEFINITIONS
  "VARN_VERSION=\"${PROJECT_VERSION}\";VARN_MODULE_SUFFIX=\"${CMAKE_SHARED_LIBRARY_SUFFIX}\"")
varn_target(varn_filepackaging)
target_include_directories(varn_filepackaging
  PUBLIC
    $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/include>
    $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>
  PRIVATE ${PROJECT_SOURCE_DIR})
target_link_libraries(varn_filepackaging PUBLIC orbel Boost::headers PRIVATE Boost::filesystem)
set_target_properties(varn_filepackaging PROPERTIES
  VERSION ${PROJECT_VERSION}
  SOVERSION ${PROJECT_VERSION_MAJOR}
  INTERPROCEDURAL_OPTIMIZATION_RELEASE ${VARN_LINK_TIME_OPTIMIZATION})
add_library(varn::varn_filepackaging ALIAS varn_filepackaging)
varn_install_library(varn_filepackaging libvarn-filepackaging1 libvarn-filepackaging-dev)
varn_install(dev libvarn-filepackaging-dev
  DIRECTORY include/varn DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
