// printf formatting for log lines that prints numbers the same way in every locale.
#pragma once
#include <cstdarg>
#include <cstddef>

// Formats one line and hands it to `write` once, in one piece. Lines of any length; when memory runs out
// the line is dropped. Any thread.
void FormatLine(const char* format, va_list arguments, void (*write)(const char* text, size_t length));
