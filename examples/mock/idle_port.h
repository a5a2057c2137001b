/* A small front end: switches off a port that has no link, and saves the configuration. */
#ifndef IDLE_PORT_H
#define IDLE_PORT_H

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

enum idle_port_result { IDLE_PORT_OFF, IDLE_PORT_IN_USE, IDLE_PORT_FAILED };

enum idle_port_result switch_off_idle_port(uint32_t slot, uint32_t port);

#ifdef __cplusplus
}
#endif

#endif
