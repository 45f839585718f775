(defun c:work (/ root d)
  ; R12 has no dictionaries
  (if (setq root (namedobjdict))
    (progn
      (foreach p (entget root)
        (if (= (car p) 3) (princ (strcat "\n" (cdr p)))))
      (if (setq d (dictsearch root "ACAD_LAYOUT"))
        (foreach p d (if (= (car p) 3) (princ (strcat "\n  " (cdr p))))))))
  (princ))
