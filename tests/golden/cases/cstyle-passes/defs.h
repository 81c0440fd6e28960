#ifndef DEFS_H
#define DEFS_H
#define PORT	P1
#endif
