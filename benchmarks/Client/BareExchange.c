/* The system calls of one exchange and nothing else: what the client's speed is measured against.
   usage: bare_exchange PORT < request */
#include <arpa/inet.h>
#include <stdlib.h>
#include <string.h>
#include <sys/socket.h>
#include <unistd.h>

static char request[4096];
static char answer[65536];

int main(int argc, char *argv[])
{
    struct sockaddr_in address;
    ssize_t size;
    int connection;

    if (argc != 2)
        return 2;
    size = read(0, request, sizeof request);
    memset(&address, 0, sizeof address);
    address.sin_family = AF_INET;
    address.sin_port = htons((unsigned short)atoi(argv[1]));
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    connection = socket(AF_INET, SOCK_STREAM, 0);
    if (size <= 0 || connect(connection, (struct sockaddr *)&address, sizeof address) != 0 ||
        send(connection, request, (size_t)size, 0) != size)
        return 1;
    size = recv(connection, answer, sizeof answer, 0);
    return size > 0 && write(1, answer, (size_t)size) == size ? 0 : 1;
}
