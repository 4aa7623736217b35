#include "Application.h"

int main(int argc, char** argv)
{
    return viewer::runApplication(argc, argv);
}
