# The SDK: what a program takes to link the framework and the client as libraries (docs/sdk.md). It is
# the component sdk, which an install without a component leaves out:
# cmake --install build/PRESET --prefix DIR --component sdk
include(CMakePackageConfigHelpers)

# The public interface: these headers, which include no others of this tree. What they declare stays
# within a major version, and each says what else it promises.
set(sdk_headers
    Modules/xFramework/Core/Classes/ANamespace.h
    Modules/xFramework/Core/Classes/ClassFactory.h
    Modules/xFramework/Core/Classes/ElementText.h
    Modules/xFramework/Core/Classes/ElementTypes.h
    Modules/xFramework/Core/Classes/IInterface.h
    Modules/xFramework/Core/Classes/INamespace.h
    Modules/xFramework/Core/Classes/IValue.h
    Modules/xFramework/Core/Classes/MetaType.h
    Modules/xFramework/Core/Classes/Namespace.h
    Modules/xFramework/Core/Classes/Service.h
    Modules/xFramework/Core/Classes/ServiceDomain.h
    Modules/xFramework/Core/Classes/TypeDescriptor.h
    Modules/xFramework/Core/Classes/TypedValue.h
    Modules/xFramework/Core/Classes/Value.h
    Modules/xFramework/Core/Classes/ValueFactory.h
    Modules/xFramework/OSAL/Socket.h
    Modules/xFramework/Streams/Sockets/SocketClientStream.h
    Modules/xFramework/Streams/Sockets/SocketStream.h
    Modules/xFramework/SyncObjectsOSAL/CriticalSectionOSAL.h
    Modules/xFramework/SyncObjectsOSAL/ICriticalSection.h
    Modules/xFramework/Utilities/BriefLogFormatter.h
    Modules/xFramework/Utilities/Exception.h
    Modules/xFramework/Utilities/Format.h
    Modules/xFramework/Utilities/FormatProviders.h
    Modules/xFramework/Utilities/Log.h
    Modules/xFramework/Utilities/LogPrinter.h
    Modules/xFramework/Utilities/Singleton.h
    Modules/xFramework/XML/Base.h
    Modules/xFramework/XML/Children.h
    Modules/xFramework/XML/IListener.h
    Modules/xFramework/XML/Node.h
    Modules/xFramework/XML/Writer.h
    Tools/SarvexTool/Client/CliClient.h
    Tools/SarvexTool/Client/CommandTable.h
    Tools/SarvexTool/Client/Reply.h
    Tools/SarvexTool/Client/Request.h
    Tools/Vemo/VemoClient/DynamicTest/ReplySearch.h)

set(sdk_includes include/sarvextool)
set(sdk_libraries lib)
if(NOT WIN32 AND CMAKE_LIBRARY_ARCHITECTURE)
    # Where Debian and Ubuntu look for the libraries of one architecture.
    set(sdk_libraries lib/${CMAKE_LIBRARY_ARCHITECTURE})
endif()
set(sdk_package ${sdk_libraries}/cmake/SarvexTool)
set(sdk_pkgconfig ${sdk_libraries}/pkgconfig)

# What each link with the framework's archive needs besides. Nothing refers to the object file that
# makes the framework ready before main, so the link has to ask for it by name (Core/Classes/StartUp.cpp).
set(sdk_link_options -Wl,-u,SarvexToolStartUp)
set(sdk_system_libraries "")
if(WIN32)
    set(sdk_system_libraries -lws2_32)
    # The library of the stack protection, where the compiler has one.
    list(APPEND sdk_link_options -fstack-protector-strong)
endif()
list(JOIN sdk_link_options " " sdk_link_options_text)

# add_sdk_library(TARGET NAME layer ...): the archive libsarvextool-NAME.a of the layers' own objects.
function(add_sdk_library target name)
    list(TRANSFORM ARGN REPLACE "(.+)" "$<TARGET_OBJECTS:\\1>")
    add_library(${target} STATIC ${ARGN})
    set_target_properties(${target} PROPERTIES OUTPUT_NAME sarvextool-${name} LINKER_LANGUAGE CXX)
    target_compile_features(${target} INTERFACE cxx_std_20)
    target_include_directories(${target} INTERFACE $<INSTALL_INTERFACE:${sdk_includes}>)
endfunction()

add_sdk_library(SdkFramework framework
    OSAL DebugPrint SyncObjectsOSAL Utilities Sockets XML Core StartUp)
set_target_properties(SdkFramework PROPERTIES EXPORT_NAME Framework)
# Link options would be lost below CMake 3.17 (policy CMP0099) where a static library of a program links
# the framework for itself; what is named among the libraries is not.
target_link_libraries(SdkFramework INTERFACE ${sdk_link_options} ${sdk_system_libraries})

add_sdk_library(SdkClient client Client Reply TestFile)
set_target_properties(SdkClient PROPERTIES EXPORT_NAME Client)
target_link_libraries(SdkClient INTERFACE SdkFramework)

install(TARGETS SdkFramework SdkClient EXPORT SarvexToolTargets
    ARCHIVE DESTINATION ${sdk_libraries} COMPONENT sdk EXCLUDE_FROM_ALL)
install(EXPORT SarvexToolTargets NAMESPACE SarvexTool:: DESTINATION ${sdk_package}
    COMPONENT sdk EXCLUDE_FROM_ALL)

foreach(header IN LISTS sdk_headers)
    cmake_path(GET header PARENT_PATH folder)
    install(FILES ${PROJECT_SOURCE_DIR}/src/${header} DESTINATION ${sdk_includes}/${folder}
        COMPONENT sdk EXCLUDE_FROM_ALL)
endforeach()

set(sdk_templates ${PROJECT_SOURCE_DIR}/packaging/sdk)
set(sdk_made ${CMAKE_BINARY_DIR}/sdk)
file(RELATIVE_PATH sdk_includes_from_pkgconfig /${sdk_pkgconfig} /${sdk_includes})
configure_file(${sdk_templates}/Version.h.in ${sdk_made}/Version.h @ONLY)
configure_file(${sdk_templates}/sarvextool-framework.pc.in ${sdk_made}/sarvextool-framework.pc @ONLY)
configure_file(${sdk_templates}/sarvextool-client.pc.in ${sdk_made}/sarvextool-client.pc @ONLY)
configure_package_config_file(${sdk_templates}/SarvexToolConfig.cmake.in
    ${sdk_made}/SarvexToolConfig.cmake INSTALL_DESTINATION ${sdk_package})
write_basic_package_version_file(${sdk_made}/SarvexToolConfigVersion.cmake
    COMPATIBILITY SameMajorVersion)

install(FILES ${sdk_made}/Version.h DESTINATION ${sdk_includes}/SarvexTool
    COMPONENT sdk EXCLUDE_FROM_ALL)
install(FILES ${sdk_made}/SarvexToolConfig.cmake ${sdk_made}/SarvexToolConfigVersion.cmake
    DESTINATION ${sdk_package} COMPONENT sdk EXCLUDE_FROM_ALL)
install(FILES ${sdk_made}/sarvextool-framework.pc ${sdk_made}/sarvextool-client.pc
    DESTINATION ${sdk_pkgconfig} COMPONENT sdk EXCLUDE_FROM_ALL)
