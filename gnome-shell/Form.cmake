# Writes the module SCRIPT to OUTPUT in the given FORM: as it is, or as GNOME Shell took extensions
# before 45, when they were no modules. Of what modules may say to each other it knows what is used here.
file(READ ${SCRIPT} text)
if(FORM STREQUAL legacy)
  set(name "([A-Za-z]+)")
  set(names "({[A-Za-z, ]+})")
  set(shell "resource:///org/gnome/shell")
  string(REGEX REPLACE "import {Extension} from '[^']+';\n" "" text "${text}")
  string(REGEX REPLACE "import ${name} from 'gi://${name}';" "const \\1 = imports.gi.\\2;" text "${text}")
  string(REGEX REPLACE "import \\* as ${name} from '${shell}/${name}/${name}\\.js';"
         "const \\1 = imports.\\2.\\3;" text "${text}")
  string(REGEX REPLACE "import ${names} from '${shell}/${name}/${name}\\.js';"
         "const \\1 = imports.\\2.\\3;" text "${text}")
  string(REGEX REPLACE "import ${names} from '\\./${name}\\.js';"
         "const \\1 = imports.misc.extensionUtils.getCurrentExtension().imports.\\2;" text "${text}")
  if(text MATCHES "\nexport default class ${name} extends Extension {")
    string(REPLACE "${CMAKE_MATCH_0}" "\nclass ${CMAKE_MATCH_1} {" text "${text}")
    string(APPEND text "\nfunction init() {\n  return new ${CMAKE_MATCH_1}();\n}\n")
  endif()
  string(REGEX REPLACE "\nexport class ${name} {" "\nvar \\1 = class {" text "${text}")
  string(REGEX REPLACE "\nexport function " "\nfunction " text "${text}")
  if(text MATCHES "(^|\n)((import|export) [^\n]*)")
    message(FATAL_ERROR "${SCRIPT}: the older form has no words for: ${CMAKE_MATCH_2}")
  endif()
endif()
file(WRITE ${OUTPUT} "${text}")
