# Debian packages, one per component: scripts/packages builds them.
set(runtime_package liblumora-filters${PROJECT_VERSION_MAJOR})

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME lumora-filters)
set(CPACK_PACKAGE_CONTACT "lumora_filters maintainers <maintainers@lumora-filters.invalid>")
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_RESOURCE_FILE_LICENSE ${PROJECT_SOURCE_DIR}/LICENSE)
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
# Policy and the order of upgrades want plain modes, whatever the umask of the build.
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
  OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
set(CPACK_COMPONENTS_ALL runtime development)
if(LUMORA_WITH_TOOL)
  list(APPEND CPACK_COMPONENTS_ALL tools)
endif()
if(LUMORA_WITH_PYTHON)
  list(APPEND CPACK_COMPONENTS_ALL python)
endif()
if(LUMORA_WITH_FREI0R)
  list(APPEND CPACK_COMPONENTS_ALL frei0r)
endif()
if(LUMORA_WITH_GSTREAMER)
  list(APPEND CPACK_COMPONENTS_ALL gstreamer)
endif()
set(CPACK_COMPONENTS_GROUPING ONE_PER_GROUP)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS_POLICY ">=")
set(same_version "${runtime_package} (= ${PROJECT_VERSION}-${CPACK_DEBIAN_PACKAGE_RELEASE})")

# The first line of a description is its synopsis: no package shares one.
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "")
set(CPACK_DEBIAN_RUNTIME_PACKAGE_NAME ${runtime_package})
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_RUNTIME_PACKAGE_CONTROL_EXTRA ${PROJECT_SOURCE_DIR}/packaging/triggers)
set(CPACK_DEBIAN_RUNTIME_DESCRIPTION "picture filters for cameras and galleries - library
Twenty modes that rewrite a picture in place, as RGBA or as NV21 and NV12
camera frames: tone curves, film looks with textures, mosaic, colour fix and
focus blur. The result has the same bytes on every processor.

This package contains the shared library, the default texture pack and the
tuning document with the built-in values.")

set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME liblumora-filters-dev)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS "${same_version}")
set(CPACK_DEBIAN_DEVELOPMENT_DESCRIPTION "picture filters for cameras and galleries - development
Twenty modes that rewrite a picture in place, as RGBA or as NV21 and NV12
camera frames.

This package contains the C header, the static library, and what CMake and
pkg-config need to find them.")

set(CPACK_DEBIAN_TOOLS_PACKAGE_NAME lumora)
set(CPACK_DEBIAN_TOOLS_PACKAGE_SECTION graphics)
set(CPACK_DEBIAN_TOOLS_PACKAGE_DEPENDS "${same_version}")
set(CPACK_DEBIAN_TOOLS_DESCRIPTION "picture filters for photographs and camera frames
lumora gives photographs one of twenty looks, keeps their colour profile and
metadata, and turns them upright. It draws a sheet of all looks on a picture,
filters raw video frames from a pipe, and makes and checks texture packs and
tuning documents.")

set(CPACK_DEBIAN_PYTHON_PACKAGE_NAME python3-lumora)
set(CPACK_DEBIAN_PYTHON_PACKAGE_SECTION python)
# The module has the library inside and shares its resources.
set(CPACK_DEBIAN_PYTHON_PACKAGE_DEPENDS "${same_version}, python3 (>= 3.11), python3:any")
set(CPACK_DEBIAN_PYTHON_PACKAGE_SUGGESTS "python3-numpy, python3-pil")
set(CPACK_DEBIAN_PYTHON_PACKAGE_CONTROL_EXTRA
  ${PROJECT_SOURCE_DIR}/packaging/python/postinst ${PROJECT_SOURCE_DIR}/packaging/python/prerm)
set(CPACK_DEBIAN_PYTHON_DESCRIPTION "picture filters for photographs and camera frames - Python
import lumora gives Pillow pictures, numpy arrays and camera frames one of
twenty looks, without copying what lies in a buffer and without holding up
other threads.")

set(CPACK_DEBIAN_FREI0R_PACKAGE_NAME lumora-frei0r)
set(CPACK_DEBIAN_FREI0R_PACKAGE_SECTION video)
set(CPACK_DEBIAN_FREI0R_PACKAGE_DEPENDS "${same_version}")
set(CPACK_DEBIAN_FREI0R_DESCRIPTION "picture filters for video editors - frei0r plug-ins
Twenty looks and effects for ffmpeg, MLT and the video editors on top of it,
and every other program that loads frei0r plug-ins.")

set(CPACK_DEBIAN_GSTREAMER_PACKAGE_NAME gstreamer1.0-lumora)
set(CPACK_DEBIAN_GSTREAMER_PACKAGE_SECTION video)
set(CPACK_DEBIAN_GSTREAMER_PACKAGE_DEPENDS "${same_version}")
set(CPACK_DEBIAN_GSTREAMER_DESCRIPTION "picture filters for GStreamer
The element lumorafilter gives video one of twenty looks and effects, in place
on RGBA, NV12 and NV21 frames. Camera programs that read effect descriptions
list them by name.")

# What Debian wants in every package besides the installed files.
set(CPACK_PRE_BUILD_SCRIPTS ${PROJECT_SOURCE_DIR}/packaging/debian_files.cmake)
set(CPACK_LUMORA_PACKAGE_NAMES
  "runtime=${runtime_package};development=liblumora-filters-dev;tools=lumora;python=python3-lumora;frei0r=lumora-frei0r;gstreamer=gstreamer1.0-lumora")
set(CPACK_LUMORA_SOURCE_DIR ${PROJECT_SOURCE_DIR})
include(CPack)
