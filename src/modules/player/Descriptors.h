#pragma once

// Whether this process can open so many more files. GLib ends the process when it finds no file
// descriptor for one of its own needs, so this is asked before a pipeline is made. Any thread.
bool descriptorsAreFree(int count);

// What a pipeline opens at most, with its threads, its file or connections and what its elements
// load.
constexpr int DescriptorsOfAPipeline = 16;
