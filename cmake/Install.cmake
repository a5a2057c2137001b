include(GNUInstallDirs)
include(CMakePackageConfigHelpers)
install(TARGETS oltmgmt oltmgmt_static EXPORT oltmgmt)
install(FILES include/oltmgmt.h include/oltplatform.h TYPE INCLUDE)
install(DIRECTORY examples TYPE DOC
  FILES_MATCHING PATTERN *.c PATTERN *.cc PATTERN *.h PATTERN CMakeLists.txt PATTERN Makefile
  PATTERN *.pcapng)

# For find_package(oltmgmt).
set(OLT_PACKAGE_FOLDER ${CMAKE_INSTALL_LIBDIR}/cmake/oltmgmt)
install(EXPORT oltmgmt
  FILE oltmgmtConfig.cmake NAMESPACE oltmgmt:: DESTINATION ${OLT_PACKAGE_FOLDER})
write_basic_package_version_file(oltmgmtConfigVersion.cmake COMPATIBILITY SameMinorVersion)
install(FILES ${PROJECT_BINARY_DIR}/oltmgmtConfigVersion.cmake DESTINATION ${OLT_PACKAGE_FOLDER})

# For pkg-config. The files locate the prefix from their own place, so that it can be moved.
set(OLT_PC_FOLDER ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
string(REGEX REPLACE "[^/]+" ".." OLT_PREFIX_FROM_PC ${OLT_PC_FOLDER})
foreach(library oltmgmt oltmock oltplatform)
  if(TARGET ${library})
    configure_file(cmake/${library}.pc.in ${library}.pc @ONLY)
    install(FILES ${PROJECT_BINARY_DIR}/${library}.pc DESTINATION ${OLT_PC_FOLDER})
  endif()
endforeach()
