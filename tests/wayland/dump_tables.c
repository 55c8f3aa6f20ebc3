/*
 * Prints the tables of the interfaces that the program is linked with: one line for each
 * interface, and one for each of its messages with the name of the interface, or "-", at each
 * letter of the signature.
 */
#include <stdio.h>
#include <string.h>
#include <wayland-util.h>

extern const struct wl_interface* const interfaces[];
extern const size_t interface_count;

static void dump_messages(const char* kind, const struct wl_message* messages, int count) {
  for (int i = 0; i < count; i++) {
    const struct wl_message* message = &messages[i];
    size_t argument = 0;
    printf("  %s %s \"%s\"", kind, message->name, message->signature);
    for (const char* letter = message->signature; *letter != '\0'; letter++) {
      if (strchr("iufsonah", *letter) == NULL) continue;
      const struct wl_interface* type = message->types[argument++];
      printf(" %s", type == NULL ? "-" : type->name);
    }
    printf("\n");
  }
}

int main(void) {
  for (size_t i = 0; i < interface_count; i++) {
    const struct wl_interface* interface = interfaces[i];
    printf("%s %d %d %d\n", interface->name, interface->version, interface->method_count,
           interface->event_count);
    dump_messages("request", interface->methods, interface->method_count);
    dump_messages("event", interface->events, interface->event_count);
  }
  return 0;
}
