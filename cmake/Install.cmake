include(GNUInstallDirs)
install(TARGETS oltmgmt oltmgmt_static)
install(FILES include/oltmgmt.h include/oltplatform.h TYPE INCLUDE)
