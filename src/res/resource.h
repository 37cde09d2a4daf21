/* Resource ids shared by the resource script and the code. */
#ifndef ZORVI_RES_RESOURCE_H
#define ZORVI_RES_RESOURCE_H

/* Icons 101 to 108, in the order of the toolbar's image list. */
#define IDI_APP 101
#define IDI_SETFILE 102
#define IDI_CONFIG 103
#define IDI_WATCH_ON 104
#define IDI_WATCH_OFF 105
#define IDI_COMPILE 106
#define IDI_PLAY 107
#define IDI_LOG 108

#endif
