// Reads the data of the page.
(function () {
  "use strict";
  const viewer = (window.viewer = window.viewer || {});
  viewer.data = JSON.parse(document.getElementById("scene-data").textContent);
})();
