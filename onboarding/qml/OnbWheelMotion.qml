// How everything about a wheel moves when it is turned.
import QtQuick
import Dormel.Ui

EasedNumber { duration: 400; curve: Motion.reveal }
