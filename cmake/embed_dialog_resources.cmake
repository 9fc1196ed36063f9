# Run as a script: writes OUTPUT, a C++ source that holds every *.dlg text of RESOURCE_DIR as
# a string, so the toolkit library carries its dialog resources and needs no file at run time.
file(GLOB names RELATIVE ${RESOURCE_DIR} ${RESOURCE_DIR}/*.dlg)
list(SORT names)
set(entries "")
foreach(name IN LISTS names)
  file(READ ${RESOURCE_DIR}/${name} text)
  string(APPEND entries "    {\"${name}\",\n     R\"dlg(${text})dlg\"},\n")
endforeach()
file(WRITE ${OUTPUT}.new
  "// Generated from src/toolkit/resources by cmake/embed_dialog_resources.cmake.\n"
  "#include \"toolkit/dialog_resources.h\"\n\n"
  "namespace kaldena {\n\n"
  "namespace {\n\n"
  "constexpr ResourceText kTexts[] = {\n${entries}};\n\n"
  "}  // namespace\n\n"
  "std::span<const ResourceText> EmbeddedResourceTexts() { return kTexts; }\n\n"
  "}  // namespace kaldena\n")
file(COPY_FILE ${OUTPUT}.new ${OUTPUT} ONLY_IF_DIFFERENT)
file(REMOVE ${OUTPUT}.new)
