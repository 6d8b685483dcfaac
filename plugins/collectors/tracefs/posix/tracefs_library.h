#pragma once

#include <cstddef>

// What is used of libtracefs. Its own header is for C only: it has no linkage for C++ and functions that are none of it.
extern "C" {
struct tracefs_instance;

tracefs_instance* tracefs_instance_create(const char* name);
tracefs_instance* tracefs_instance_alloc(const char* tracing_dir, const char* name);
bool tracefs_instance_is_new(tracefs_instance* instance);
int tracefs_instance_destroy(tracefs_instance* instance);
void tracefs_instance_free(tracefs_instance* instance);

char* tracefs_instance_get_file(tracefs_instance* instance, const char* file);
void tracefs_put_tracing_file(char* name);
char* tracefs_instance_file_read(tracefs_instance* instance, const char* file, int* size);
int tracefs_instance_file_write(tracefs_instance* instance, const char* file, const char* text);
int tracefs_instance_file_open(tracefs_instance* instance, const char* file, int mode);
int tracefs_instance_set_buffer_size(tracefs_instance* instance, std::size_t kilobytes, int cpu);

int tracefs_event_enable(tracefs_instance* instance, const char* system, const char* event);
int tracefs_event_disable(tracefs_instance* instance, const char* system, const char* event);
}
