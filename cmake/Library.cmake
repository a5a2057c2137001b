# liboltmgmt, shared and static: the seven library folders, transport/ and nothing but libc.
add_library(oltmgmt_objects OBJECT
  flash/board_record.cc
  flash/partition.cc
  ont/iptv.cc
  ont/voice.cc
  ont/wan.cc
  pon/authentication.cc
  pon/inventory.cc
  pon/link.cc
  pon/multicast.cc
  pon/uni_port.cc
  snmp/olt_tables.cc
  snmp/onu_tables.cc
  switch/multicast.cc
  switch/port.cc
  switch/rstp.cc
  switch/statistics.cc
  switch/trunk.cc
  switch/vlan.cc
  switch/vlan_list.cc
  system/control.cc
  system/debug.cc
  system/information.cc
  system/update.cc
  system/user.cc
  transport/block.cc
  transport/interface_request.cc
  transport/ont_target.cc
  transport/shapes.cc)
target_link_libraries(oltmgmt_objects PRIVATE olt_flags)
target_compile_options(oltmgmt_objects PRIVATE
  -fno-exceptions -fno-rtti -fno-threadsafe-statics -fno-asynchronous-unwind-tables
  $<$<NOT:$<CONFIG:Debug>>:-Os>
  -fno-stack-protector -ffunction-sections -fdata-sections -fvisibility=hidden
  -U_FORTIFY_SOURCE)

set(OLT_EXPORT_MAP ${PROJECT_SOURCE_DIR}/abi/exports.map)

# No start files: they would bring writable data. The C driver links, so that no C++ library does.
add_library(oltmgmt SHARED $<TARGET_OBJECTS:oltmgmt_objects>)
add_library(oltmgmt::oltmgmt ALIAS oltmgmt)
set_target_properties(oltmgmt PROPERTIES
  LINKER_LANGUAGE C SOVERSION 0 VERSION ${PROJECT_VERSION} LINK_DEPENDS ${OLT_EXPORT_MAP})
target_include_directories(oltmgmt INTERFACE
  $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/include> $<INSTALL_INTERFACE:include>)
target_link_options(oltmgmt PRIVATE
  -Wl,--version-script=${OLT_EXPORT_MAP} -Wl,--gc-sections,--as-needed
  -Wl,-z,relro,-z,now,-z,noexecstack,-z,max-page-size=4096)
if(NOT OLT_SANITIZE)
  target_link_options(oltmgmt PRIVATE -nostartfiles -Wl,--build-id=none)
endif()
target_link_libraries(oltmgmt PRIVATE ${OLT_PLATFORM_LIBRARY})

add_library(oltmgmt_static STATIC $<TARGET_OBJECTS:oltmgmt_objects>)
add_library(oltmgmt::oltmgmt_static ALIAS oltmgmt_static)
set_target_properties(oltmgmt_static PROPERTIES OUTPUT_NAME oltmgmt LINKER_LANGUAGE C)
target_include_directories(oltmgmt_static INTERFACE
  $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/include> $<INSTALL_INTERFACE:include>)
