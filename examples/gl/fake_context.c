/*
 * A program that loads OpenGL from a context that is not there.
 *
 *   fake_context [VERSION [EXTENSION...]]
 *
 * The fake context has the version (4.6 when none is given) and the extensions of the command line.
 * It implements a few commands, finds every other name too, and ends the program when one of those
 * is called.
 */
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include "gl_loader.h"

static const char *version_text = "4.6";
static char **extensions;
static GLint extension_count;
static int lookups;
static GLbitfield cleared;

static const GLubyte *GLLOADER_CALL get_string(GLenum name)
{
    return name == GL_VERSION ? (const GLubyte *)version_text : NULL;
}

static const GLubyte *GLLOADER_CALL get_string_at(GLenum name, GLuint index)
{
    return name == GL_EXTENSIONS ? (const GLubyte *)extensions[index] : NULL;
}

static void GLLOADER_CALL get_integer(GLenum name, GLint *value)
{
    *value = name == GL_NUM_EXTENSIONS ? extension_count : -1;
}

static void GLLOADER_CALL clear(GLbitfield mask)
{
    cleared = mask;
}

static GLboolean GLLOADER_CALL is_enabled(GLenum capability)
{
    return capability == GL_BLEND;
}

static void not_implemented(void)
{
    fputs("a command was called that the fake context does not implement\n", stderr);
    exit(EXIT_FAILURE);
}

static const struct {
    const char *name;
    glloader_command command;
} implemented[] = {
    {"glClear", (glloader_command)clear},
    {"glGetIntegerv", (glloader_command)get_integer},
    {"glGetString", (glloader_command)get_string},
    {"glGetStringi", (glloader_command)get_string_at},
    {"glIsEnabled", (glloader_command)is_enabled},
};

static glloader_command fake_get_command(const char *name)
{
    size_t i;

    lookups++;
    for (i = 0; i < sizeof implemented / sizeof implemented[0]; i++)
        if (strcmp(name, implemented[i].name) == 0)
            return implemented[i].command;
    return not_implemented;
}

int main(int count, char **arguments)
{
    int version;

    if (count > 1)
        version_text = arguments[1];
    extensions = arguments + 2;
    extension_count = count > 2 ? count - 2 : 0;

    version = glloader_load(fake_get_command);
    if (version == 0) {
        fputs("the fake context was not recognised\n", stderr);
        return EXIT_FAILURE;
    }
    printf("version %d.%d, %d commands looked up\n", version / 100, version % 100, lookups);

    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
    printf("glClear reached the context with 0x%04X\n", cleared);
    printf("glIsEnabled gave %d for GL_BLEND, %d for GL_DITHER\n", glIsEnabled(GL_BLEND),
           glIsEnabled(GL_DITHER));
    printf("glDrawArraysInstanced of GL_VERSION_3_1: %s\n",
           glDrawArraysInstanced != NULL ? "found" : "missing");
#ifdef GL_ARB_bindless_texture
    printf("glGetTextureHandleARB of GL_ARB_bindless_texture: %s\n",
           glGetTextureHandleARB != NULL ? "found" : "missing");
#endif
    return EXIT_SUCCESS;
}
