// A frei0r effect whose initialisation returns INIT_RESULT.

extern "C" {
#include <frei0r.h>

int f0r_init() {
    return INIT_RESULT;
}
void f0r_get_plugin_info(f0r_plugin_info_t* info) {
    info->name = "fixture";
    info->frei0r_version = FREI0R_MAJOR_VERSION;
    info->plugin_type = F0R_PLUGIN_TYPE_FILTER;
}
void f0r_deinit() {}
void f0r_get_param_info(f0r_param_info_t*, int) {}
f0r_instance_t f0r_construct(unsigned, unsigned) {
    return nullptr;
}
void f0r_destruct(f0r_instance_t) {}
void f0r_set_param_value(f0r_instance_t, f0r_param_t, int) {}
void f0r_get_param_value(f0r_instance_t, f0r_param_t, int) {}
void f0r_update(f0r_instance_t, double, const uint32_t*, uint32_t*) {}
}
