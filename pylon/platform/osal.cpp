#include <pylon/platform/osal.h>

#include <cstring>

namespace osal {

void strcpy(char* destination, int destinationSize, const char* source) {
    if (!destination || destinationSize <= 0)
        return;
    destination[0] = '\0';
    if (!source)
        return;
    const std::size_t length = std::strlen(source);
    if (length < static_cast<std::size_t>(destinationSize))
        std::memcpy(destination, source, length + 1);
}

char* strtok(char* text, const char* delimiters) {
    if (!text || !delimiters)
        return nullptr;
    char* const token = text + std::strspn(text, delimiters);
    if (*token == '\0')
        return nullptr;
    token[std::strcspn(token, delimiters)] = '\0';
    return token;
}

}  // namespace osal
