message(FATAL_ERROR "a module of this project, which no other project may include")
