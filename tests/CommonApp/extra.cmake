# A plug-in without a host's help: the tests load and unload it.
add_library(test_CommonApp_plugin MODULE ${CMAKE_CURRENT_LIST_DIR}/module/Plugin.cpp)
target_link_libraries(test_CommonApp_plugin PRIVATE CommonApp tarn_options)
# Without the map the standard library's unique symbols would keep the plug-in in memory.
target_link_options(test_CommonApp_plugin PRIVATE
  -Wl,--version-script=${CMAKE_CURRENT_LIST_DIR}/module/Plugin.map)
target_link_libraries(test_CommonApp PRIVATE ${CMAKE_DL_LIBS})
add_dependencies(test_CommonApp test_CommonApp_plugin)
target_compile_definitions(test_CommonApp PRIVATE TEST_PLUGIN="$<TARGET_FILE:test_CommonApp_plugin>")
