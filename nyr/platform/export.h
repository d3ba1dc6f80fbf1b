#pragma once

// Symbols of the shared libraries are hidden unless marked: every class and
// free function of the public interface carries NYR_EXPORT.
#define NYR_EXPORT __attribute__((visibility("default")))
